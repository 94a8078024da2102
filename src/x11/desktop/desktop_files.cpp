#include "x11/desktop/desktop_files.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <system_error>
#include <utility>

namespace quorlo {

namespace {

constexpr std::string_view kSuffix = ".desktop";

std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return result;
}

std::string variable(const char* name, const std::string& fallback) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : fallback;
}

// "Name[de_AT]" and "Name[de]" for a user of de_AT.UTF-8; the better one first.
std::vector<std::string> localizedNameKeys() {
  std::string locale = variable("LC_ALL", variable("LC_MESSAGES", variable("LANG", "")));
  locale = locale.substr(0, locale.find_first_of(".@"));
  if (locale.empty() || locale == "C" || locale == "POSIX") return {};
  std::vector<std::string> keys{"Name[" + locale + "]"};
  if (const auto country = locale.find('_'); country != std::string::npos) {
    keys.push_back("Name[" + locale.substr(0, country) + "]");
  }
  return keys;
}

std::optional<DesktopFile> parse(const std::filesystem::path& path, std::string identifier,
                                 const std::vector<std::string>& nameKeys) {
  std::ifstream stream(path);
  if (!stream) return std::nullopt;
  DesktopFile file;
  file.identifier = std::move(identifier);
  bool isHidden = false;
  std::size_t nameRank = nameKeys.size() + 1;
  bool inEntry = false;
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with('[')) {
      if (inEntry) break;  // actions follow
      inEntry = line.starts_with("[Desktop Entry]");
      continue;
    }
    const auto equals = line.find('=');
    if (!inEntry || equals == std::string::npos) continue;
    const std::string key = line.substr(0, line.find_last_not_of(' ', equals - 1) + 1);
    const auto start = line.find_first_not_of(' ', equals + 1);
    const std::string value = start != std::string::npos ? line.substr(start) : "";
    if (key == "StartupWMClass") file.windowClass = value;
    if (key == "Icon") file.icon = value;
    if (key == "Type") file.isApplication = value == "Application";
    if (key == "NoDisplay") isHidden = value == "true";
    if (key == "Hidden" && value == "true") return std::nullopt;
    const auto rank = key == "Name"
                          ? nameKeys.size()
                          : static_cast<std::size_t>(std::ranges::find(nameKeys, key) - nameKeys.begin());
    if ((key == "Name" || rank < nameKeys.size()) && rank < nameRank) {
      file.name = value;
      nameRank = rank;
    }
  }
  if (!inEntry) return std::nullopt;
  file.isApplication = file.isApplication && !isHidden;
  return file;
}

}  // namespace

DesktopFiles::DesktopFiles(std::vector<std::filesystem::path> directories)
    : directories_(std::move(directories)) {}

std::vector<std::filesystem::path> DesktopFiles::standardDirectories() {
  const std::filesystem::path home = variable("HOME", "/");
  std::vector<std::filesystem::path> result{
      std::filesystem::path(variable("XDG_DATA_HOME", home / ".local" / "share")) / "applications"};
  std::istringstream directories(variable("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
  for (std::string directory; std::getline(directories, directory, ':');) {
    if (!directory.empty()) result.push_back(std::filesystem::path(directory) / "applications");
  }
  return result;
}

const std::vector<DesktopFile>& DesktopFiles::all() {
  scan();
  return files_;
}

const DesktopFile* DesktopFiles::withIdentifier(std::string_view identifier) {
  if (!scanned_) scan();
  const std::string key = lowerCase(identifier);
  auto found = byIdentifier_.find(key);
  if (found == byIdentifier_.end() && maySearchAgain(identifier)) found = byIdentifier_.find(key);
  return found != byIdentifier_.end() ? &files_[found->second] : nullptr;
}

const DesktopFile* DesktopFiles::ofWindow(std::string_view instance, std::string_view windowClass) {
  if (!scanned_) scan();
  const auto* found = lookUp(instance, windowClass);
  if (found == nullptr && maySearchAgain(windowClass)) found = lookUp(instance, windowClass);
  return found;
}

const DesktopFile* DesktopFiles::lookUp(std::string_view instance, std::string_view windowClass) const {
  for (const auto* index : {&byWindowClass_, &byIdentifier_}) {
    for (const auto name : {windowClass, instance}) {
      if (name.empty()) continue;
      if (const auto found = index->find(lowerCase(name)); found != index->end())
        return &files_[found->second];
    }
  }
  return nullptr;
}

// A program may have been installed since the directories were read. One without any file must not
// cost a search each time.
bool DesktopFiles::maySearchAgain(std::string_view name) {
  if (name.empty() || !missed_.emplace(name).second) return false;
  scan();
  return true;
}

void DesktopFiles::scan() {
  scanned_ = true;
  files_.clear();
  byIdentifier_.clear();
  byWindowClass_.clear();
  const auto nameKeys = localizedNameKeys();
  for (const auto& directory : directories_) {
    std::error_code error;
    using Options = std::filesystem::directory_options;
    std::filesystem::recursive_directory_iterator entries(
        directory, Options::follow_directory_symlink | Options::skip_permission_denied, error);
    std::vector<std::filesystem::path> paths;
    for (; !error && entries != std::filesystem::recursive_directory_iterator(); entries.increment(error)) {
      if (entries->path().extension() == kSuffix) paths.push_back(entries->path());
    }
    std::ranges::sort(paths);  // the same choice on every machine
    for (const auto& path : paths) {
      std::string identifier = path.lexically_relative(directory).string();
      identifier.erase(identifier.size() - kSuffix.size());
      std::ranges::replace(identifier, '/', '-');
      auto file = parse(path, identifier, nameKeys);
      // A file of the same name in a directory of more weight hides this one.
      if (!file || !byIdentifier_.emplace(lowerCase(identifier), files_.size()).second) continue;
      if (!file->windowClass.empty()) byWindowClass_.emplace(lowerCase(file->windowClass), files_.size());
      files_.push_back(std::move(*file));
    }
  }
}

}  // namespace quorlo
