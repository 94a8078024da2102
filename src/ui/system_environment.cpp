#include "ui/system_environment.h"

#include "platform/preferred_languages.h"

#include <QStandardPaths>
#include <QTimeZone>

#include <cstdlib>
#include <initializer_list>
#include <string_view>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> languagesOf(std::initializer_list<const char*> variables) {
  std::vector<std::string_view> values;
  for (const auto* const variable : variables) {
    const auto* const value = std::getenv(variable);
    values.emplace_back(value ? value : "");
  }
  return quorlo::preferredLanguages(values);
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
