#include "app/settings/stored_user_defaults.h"

#include "base/log.h"

#include <optional>
#include <system_error>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

bool isEmptyFile(const fs::path& file) {
  std::error_code failure;
  return fs::file_size(file, failure) == 0 && !failure;
}

}  // namespace

Status makeSettingsDirectory(const fs::path& directory) {
  std::error_code failure;
  if (fs::create_directories(directory, failure)) {
    fs::permissions(directory, fs::perms::owner_all, failure);
  }
  if (!failure) return {};
  return Error{"The settings directory " + directory.string() + " cannot be made: " + failure.message()};
}

StoredUserDefaults::StoredUserDefaults(fs::path directory)
    : directory_(std::move(directory)),
      domains_{Domain{DefaultsFile(directory_ / "settings.json"), {}, {}, {}},
               Domain{DefaultsFile(directory_ / "shared-settings.json"), {}, {}, {}}} {
  readAgain();
}

const DefaultsValue* StoredUserDefaults::value(DefaultsDomain domain, std::string_view key) const {
  const auto& values = domainOf(domain).values;
  const auto found = values.find(key);
  return found == values.end() ? nullptr : &found->second;
}

void StoredUserDefaults::setValue(DefaultsDomain domain, std::string_view key, DefaultsValue value) {
  // What memory and disk hold must be equal, or the own write would look like another's.
  auto storable = storableValue(value);
  if (!storable) return removeValue(domain, key);
  auto& [file, values, unwritten, problem] = domainOf(domain);
  values.insert_or_assign(std::string(key), *storable);
  unwritten.insert_or_assign(std::string(key), std::move(storable));
  valueHasChanged();
}

void StoredUserDefaults::removeValue(DefaultsDomain domain, std::string_view key) {
  auto& [file, values, unwritten, problem] = domainOf(domain);
  values.erase(std::string(key));
  unwritten.insert_or_assign(std::string(key), std::nullopt);
  valueHasChanged();
}

Subscription StoredUserDefaults::observeExternalChanges(Observer observer) {
  return observers_.add(std::move(observer));
}

Status StoredUserDefaults::readable() const {
  for (const auto& domain : domains_) {
    if (!domain.problem.empty()) return Error{domain.problem};
  }
  return {};
}

Status StoredUserDefaults::synchronize() {
  Status result;
  for (auto& [file, values, unwritten, problem] : domains_) {
    if (unwritten.empty()) continue;
    auto written = makeSettingsDirectory(directory_);
    if (written) written = file.write(values, unwritten);
    if (written) {
      unwritten.clear();
    } else {
      result = std::move(written);
    }
  }
  return result;
}

void StoredUserDefaults::readAgain() {
  readAgain(DefaultsDomain::standard);
  readAgain(DefaultsDomain::appGroup);
}

std::array<fs::path, 2> StoredUserDefaults::files() const {
  return {domains_[0].file.path(), domains_[1].file.path()};
}

StoredUserDefaults::Domain& StoredUserDefaults::domainOf(DefaultsDomain domain) {
  return domains_[domain == DefaultsDomain::standard ? 0 : 1];
}

const StoredUserDefaults::Domain& StoredUserDefaults::domainOf(DefaultsDomain domain) const {
  return domains_[domain == DefaultsDomain::standard ? 0 : 1];
}

void StoredUserDefaults::readAgain(DefaultsDomain name) {
  auto& [file, values, unwritten, problem] = domainOf(name);
  auto read = file.read();
  if (!read) {
    // An empty file may be one that an editor is just writing.
    if (isEmptyFile(file.path()) && !values.empty()) return;
    if (std::exchange(problem, read.error().message) != read.error().message) {
      logError("ERROR: The settings file cannot be read; " +
               std::string(values.empty() ? "the defaults apply. " : "the settings stay as they were. ") +
               read.error().message);
    }
    return;
  }
  problem.clear();
  auto present = std::move(read).value();
  for (const auto& [key, value] : unwritten) {
    if (value) {
      present.insert_or_assign(key, *value);
    } else {
      present.erase(key);
    }
  }
  std::vector<std::string> changed;
  for (const auto& [key, value] : present) {
    const auto before = values.find(key);
    if (before == values.end() || before->second != value) changed.push_back(key);
  }
  for (const auto& [key, value] : values) {
    if (!present.contains(key)) changed.push_back(key);
  }
  values = std::move(present);
  for (const auto& key : changed) observers_.notify(name, key);
}

}  // namespace quorlo
