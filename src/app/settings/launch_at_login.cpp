#include "app/settings/launch_at_login.h"

#include <fstream>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

// As an argument of Exec: quoted, then escaped as every string of an entry is.
std::string execArgument(const std::string& path) {
  std::string quoted = "\"";
  for (const char c : path) {
    if (c == '\\') {
      quoted += R"(\\\\)";
    } else if (c == '"' || c == '`' || c == '$') {
      (quoted += R"(\\)") += c;
    } else if (c == '%') {
      quoted += "%%";
    } else {
      quoted += c;
    }
  }
  return quoted + '"';
}

std::string entryFor(const fs::path& program) {
  return "[Desktop Entry]\n"
         "Type=Application\n"
         "Name=Quorlo\n"
         "Comment=Expands abbreviations as you type\n"
         "Comment[de]=Ersetzt Abkürzungen beim Tippen\n"
         "Icon=org.quorlo.Quorlo\n"
         "Exec=" +
         execArgument(program.string()) +
         "\n"
         "Terminal=false\n"
         "StartupNotify=false\n"
         "X-GNOME-Autostart-enabled=true\n";
}

}  // namespace

LaunchAtLogin::LaunchAtLogin(const fs::path& autostartDirectory, fs::path program)
    : entry_(autostartDirectory / "org.quorlo.Quorlo.desktop"), program_(std::move(program)) {}

bool LaunchAtLogin::isEnabled() const {
  std::ifstream stream(entry_);
  if (!stream) return false;
  for (std::string line; std::getline(stream, line);) {
    std::erase(line, ' ');
    if (line == "Hidden=true" || line == "X-GNOME-Autostart-enabled=false") return false;
  }
  return true;
}

Status LaunchAtLogin::setEnabled(bool on) {
  std::error_code failure;
  if (on) {
    fs::create_directories(entry_.parent_path(), failure);
    std::ofstream stream(entry_, std::ios::trunc);
    stream << entryFor(program_);
    stream.close();
    if (!stream) return Error{"The entry " + entry_.string() + " cannot be written."};
  } else if (fs::remove(entry_, failure); failure) {
    return Error{"The entry " + entry_.string() + " cannot be removed: " + failure.message()};
  }
  observers_.notify();
  return {};
}

}  // namespace quorlo
