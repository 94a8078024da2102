#include "app/settings/defaults_file.h"

#include "base/iso_date.h"
#include "base/log.h"
#include "base/whole_file.h"

#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <system_error>
#include <thread>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr auto kDateMember = "date";
constexpr mode_t kForTheUserAlone = 0600;
constexpr std::chrono::milliseconds kLockPatience{1000};
constexpr std::chrono::milliseconds kLockInterval{5};

Json toJson(const DefaultsValue& value) {
  if (const auto* date = std::get_if<Date>(&value)) return {{kDateMember, isoDate(*date)}};
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
  const auto date = readIsoDate(text.get_ref<const std::string&>());
  return date ? std::optional<DefaultsValue>(*date) : std::nullopt;
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
  std::error_code failure;
  if (!fs::exists(path, failure) && !failure) return Json::object();
  std::ifstream file(path, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  if (!file) return Error{path.string() + " cannot be read: " + std::generic_category().message(errno)};
  try {
    auto document = Json::parse(bytes);
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

// Held while a file of the folder is changed, so that no other process changes it meanwhile. Where a folder
// cannot be locked, as on some network disks, the file is changed unguarded.
class FolderLock {
 public:
  explicit FolderLock(const fs::path& folder)
      : descriptor_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    const auto end = std::chrono::steady_clock::now() + kLockPatience;
    while (descriptor_ >= 0 && ::flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
      if (errno != EWOULDBLOCK && errno != EINTR) return;
      if (std::chrono::steady_clock::now() > end) {
        isHeldByAnother_ = true;
        return;
      }
      std::this_thread::sleep_for(kLockInterval);
    }
  }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;
  ~FolderLock() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  bool isHeldByAnother() const { return isHeldByAnother_; }

 private:
  int descriptor_;
  bool isHeldByAnother_ = false;
};

}  // namespace

DefaultsFile::DefaultsFile(fs::path path) : path_(std::move(path)) {}

Result<DefaultsValues> DefaultsFile::read() const {
  const auto document = readDocument(path_);
  if (!document) return document.error();
  return valuesOf(document.value());
}

Status DefaultsFile::write(const DefaultsValues& known, const DefaultsChanges& changes) const {
  const FolderLock lock(path_.parent_path());
  if (lock.isHeldByAnother()) return Error{path_.string() + " is being written by another program."};
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
  return writeWholeFile(path_, textOf(document.value()) + "\n", kForTheUserAlone);
}

std::optional<DefaultsValue> storableValue(const DefaultsValue& value) {
  return fromJson(Json::parse(textOf(toJson(value))));
}

}  // namespace quorlo
