#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// An installed application, as its .desktop file describes it (freedesktop.org, Desktop Entry
// files).
struct DesktopFile {
  std::string identifier;   // "org.gnome.TextEditor": the file's name below the directory, without ".desktop"
  std::string name;         // in the user's language where the file has it
  std::string windowClass;  // StartupWMClass; may be empty
  std::string icon;         // a name in the icon theme or a path; may be empty
  bool isApplication = false;  // one that menus of applications show
};

// The installed applications by what their windows say of themselves. The directories are read when first
// asked, and again when a name is not found, once for each such name. One thread.
class DesktopFiles {
 public:
  // The directories named "applications", those of most weight first.
  explicit DesktopFiles(std::vector<std::filesystem::path> directories);

  static std::vector<std::filesystem::path> standardDirectories();  // XDG base directories

  // All of them, read anew.
  const std::vector<DesktopFile>& all();

  // Null when no such application is installed. The pointers hold until the next call.
  const DesktopFile* withIdentifier(std::string_view identifier);
  // By the two parts of the property WM_CLASS: StartupWMClass first, then the identifier; letter case
  // counts for nothing.
  const DesktopFile* ofWindow(std::string_view instance, std::string_view windowClass);

 private:
  void scan();
  const DesktopFile* lookUp(std::string_view instance, std::string_view windowClass) const;
  bool maySearchAgain(std::string_view name);

  std::vector<std::filesystem::path> directories_;
  bool scanned_ = false;
  std::vector<DesktopFile> files_;
  std::map<std::string, std::size_t> byIdentifier_;   // keys in lower case
  std::map<std::string, std::size_t> byWindowClass_;  // keys in lower case
  std::set<std::string, std::less<>> missed_;
};

}  // namespace quorlo
