#include "ui/defaults_file.h"

#include "base/log.h"

#include <QDateTime>
#include <QFile>
#include <QLockFile>
#include <QSaveFile>
#include <QString>

#include <nlohmann/json.hpp>

#include <chrono>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr auto kDateMember = "date";
constexpr int kLockTimeoutMs = 1000;

QString toQt(const fs::path& path) {
  return QString::fromStdString(path.string());
}

Json toJson(const DefaultsValue& value) {
  if (const auto* date = std::get_if<Date>(&value)) {
    const auto sinceEpoch = std::chrono::floor<std::chrono::milliseconds>(date->time_since_epoch());
    const auto moment = QDateTime::fromMSecsSinceEpoch(sinceEpoch.count(), Qt::UTC);
    return {{kDateMember, moment.toString(Qt::ISODateWithMs).toStdString()}};
  }
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return *whole;
  if (const auto* real = std::get_if<double>(&value)) return std::isfinite(*real) ? Json(*real) : Json();
  return std::get<std::string>(value);
}

std::optional<DefaultsValue> fromJson(const Json& json) {
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_number_unsigned() && json.get<std::uint64_t>() > std::numeric_limits<std::int64_t>::max()) {
    return json.get<double>();
  }
  if (json.is_number_integer()) return json.get<std::int64_t>();
  if (json.is_number_float()) return json.get<double>();
  if (json.is_string()) return json.get<std::string>();
  if (!json.is_object() || json.size() != 1 || !json.contains(kDateMember)) return std::nullopt;
  const auto& text = json[kDateMember];
  if (!text.is_string()) return std::nullopt;
  const auto moment =
      QDateTime::fromString(QString::fromStdString(text.get<std::string>()), Qt::ISODateWithMs);
  const auto milliseconds = std::chrono::milliseconds(moment.toMSecsSinceEpoch());
  const auto isHeld =
      milliseconds > Date::min().time_since_epoch() && milliseconds < Date::max().time_since_epoch();
  return moment.isValid() && isHeld ? std::optional<DefaultsValue>(Date(milliseconds)) : std::nullopt;
}

// Ill-formed UTF-8 is replaced.
std::string textOf(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace);
}

DefaultsValues valuesOf(const Json& document) {
  DefaultsValues values;
  for (const auto& [key, json] : document.items()) {
    if (auto value = fromJson(json)) values.emplace(key, std::move(*value));
  }
  return values;
}

// An empty object when there is no file.
Result<Json> readDocument(const fs::path& path) {
  QFile file(toQt(path));
  std::error_code failure;
  if (!fs::exists(path, failure) && !failure) return Json::object();
  if (!file.open(QIODevice::ReadOnly)) return Error{path.string() + ": " + file.errorString().toStdString()};
  const auto bytes = file.readAll();
  try {
    auto document = Json::parse(bytes.begin(), bytes.end());
    if (document.is_object()) return document;
    return Error{path.string() + " holds no JSON object."};
  } catch (const Json::exception& error) {
    return Error{path.string() + ": " + error.what()};
  }
}

// Under a name that no earlier one has.
Status setAside(const fs::path& path) {
  std::error_code failure;
  auto aside = fs::path(path.string() + ".damaged");
  for (int number = 2; fs::exists(fs::symlink_status(aside, failure)); ++number) {
    aside = path.string() + ".damaged-" + std::to_string(number);
  }
  fs::rename(path, aside, failure);
  if (failure) return Error{path.string() + " could not be set aside: " + failure.message()};
  logWarning("WARNING: The unreadable settings file is kept as " + aside.string() +
             ". To use it, correct it and rename it while Quorlo is not running.");
  return {};
}

Status save(const fs::path& path, const Json& document) {
  QSaveFile file(toQt(path));
  const auto text = textOf(document) + "\n";
  const auto saved = file.open(QIODevice::WriteOnly) &&
                     file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
                     file.write(text.data(), static_cast<qint64>(text.size())) >= 0 && file.commit();
  if (!saved) return Error{path.string() + ": " + file.errorString().toStdString()};
  return {};
}

}  // namespace

DefaultsFile::DefaultsFile(fs::path path) : path_(std::move(path)) {}

Result<DefaultsValues> DefaultsFile::read() const {
  const auto document = readDocument(path_);
  if (!document) return document.error();
  return valuesOf(document.value());
}

Status DefaultsFile::write(const DefaultsValues& known, const DefaultsChanges& changes) const {
  QLockFile lock(toQt(path_) + QStringLiteral(".lock"));
  if (!lock.tryLock(kLockTimeoutMs)) return Error{path_.string() + " cannot be locked."};
  auto document = readDocument(path_);
  if (!document) {
    if (const auto kept = setAside(path_); !kept) return kept;
    document = Json::object();
    for (const auto& [key, value] : known) document.value()[key] = toJson(value);
  }
  for (const auto& [key, value] : changes) {
    if (value) {
      document.value()[key] = toJson(*value);
    } else {
      document.value().erase(key);
    }
  }
  return save(path_, document.value());
}

std::optional<DefaultsValue> storableValue(const DefaultsValue& value) {
  return fromJson(Json::parse(textOf(toJson(value))));
}

}  // namespace quorlo
