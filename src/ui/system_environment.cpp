#include "ui/system_environment.h"

#include <QStandardPaths>
#include <QTimeZone>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <initializer_list>
#include <string_view>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

// The ICU name of a POSIX locale ("de_DE.UTF-8@euro"); empty for those that name no language.
std::string localeName(std::string_view posixName) {
  const auto name = posixName.substr(0, posixName.find_first_of(".@"));
  return name == "C" || name == "POSIX" ? std::string() : std::string(name);
}

// Each variable may hold several names, separated by colons.
std::vector<std::string> languagesOf(std::initializer_list<const char*> variables) {
  std::vector<std::string> languages;
  for (const auto* const variable : variables) {
    const auto* const value = std::getenv(variable);
    std::string_view rest = value ? value : "";
    while (!rest.empty()) {
      const auto name = localeName(rest.substr(0, rest.find(':')));
      rest.remove_prefix(
          std::min(rest.size(), rest.find(':') == rest.npos ? rest.size() : rest.find(':') + 1));
      if (!name.empty() && std::ranges::find(languages, name) == languages.end()) languages.push_back(name);
    }
  }
  if (languages.empty()) languages.emplace_back("en");
  return languages;
}

fs::path standardFolder(QStandardPaths::StandardLocation location) {
  return QStandardPaths::writableLocation(location).toStdString();
}

}  // namespace

SystemEnvironment::SystemEnvironment(fs::path programDirectory)
    : programDirectory_(std::move(programDirectory)) {}

Date SystemEnvironment::now() const {
  return std::chrono::system_clock::now();
}

std::vector<std::string> SystemEnvironment::preferredLanguages() const {
  return languagesOf({"LANGUAGE", "LC_ALL", "LC_TIME", "LANG"});
}

std::vector<std::string> SystemEnvironment::textLanguages() const {
  return languagesOf({"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"});
}

std::string SystemEnvironment::timeZone() const {
  const auto zone = QTimeZone::systemTimeZoneId();
  return zone.isEmpty() ? "UTC" : zone.toStdString();
}

fs::path SystemEnvironment::dataDirectory() const {
  return standardFolder(QStandardPaths::GenericDataLocation) / "org.quorlo.Quorlo";
}

fs::path SystemEnvironment::configDirectory() const {
  return standardFolder(QStandardPaths::GenericConfigLocation) / "quorlo";
}

fs::path SystemEnvironment::resourcesDirectory() const {
  const auto prefix = programDirectory_.parent_path();
  const auto built = prefix / "resources";
  std::error_code failure;
  return fs::is_directory(built / "sounds", failure) ? built : prefix / "share" / "quorlo";
}

}  // namespace quorlo
