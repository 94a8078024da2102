#include "x11/desktop/paste_chords.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace quorlo {

namespace {

constexpr auto kKnownTerminals = std::to_array<std::string_view>({
    "alacritty",
    "com.alacritty.alacritty",
    "com.gexperts.tilix",
    "com.github.amezin.ddterm",
    "com.mitchellh.ghostty",
    "contour",
    "cool-retro-term",
    "debian-uxterm",
    "debian-xterm",
    "deepin-terminal",
    "domterm",
    "eterm",
    "foot",
    "footclient",
    "gnome-terminal",
    "gnome-terminal-server",
    "guake",
    "hyper",
    "io.elementary.terminal",
    "kgx",
    "kitty",
    "konsole",
    "koi8rxterm",
    "lxterminal",
    "mate-terminal",
    "mlterm",
    "org.codeberg.dnkl.foot",
    "org.gnome.console",
    "org.gnome.ptyxis",
    "org.gnome.terminal",
    "org.kde.konsole",
    "org.kde.yakuake",
    "org.wezfurlong.wezterm",
    "pterm",
    "ptyxis",
    "qterminal",
    "rio",
    "roxterm",
    "rxvt",
    "rxvt-unicode",
    "sakura",
    "st",
    "st-256color",
    "stterm",
    "stterm-256color",
    "terminator",
    "termit",
    "terminology",
    "tilda",
    "tilix",
    "urxvt",
    "urxvtc",
    "uxterm",
    "wezterm",
    "xfce4-terminal",
    "xterm",
    "x-terminal-emulator",
    "yakuake",
    "zutty",
});

std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return result;
}

std::string_view trimmed(std::string_view line) {
  constexpr std::string_view kBlank = " \t\r";
  const auto begin = line.find_first_not_of(kBlank);
  if (begin == std::string_view::npos) return {};
  return line.substr(begin, line.find_last_not_of(kBlank) - begin + 1);
}

}  // namespace

PasteChords::PasteChords(const std::filesystem::path& userFile)
    : terminals_(kKnownTerminals.begin(), kKnownTerminals.end()) {
  std::ifstream file(userFile);
  for (std::string line; std::getline(file, line);) {
    const auto name = trimmed(line);
    if (!name.empty() && !name.starts_with('#')) terminals_.insert(lowerCase(name));
  }
}

bool PasteChords::pastesFromPrimary(std::string_view identifier, std::string_view windowClass) const {
  return contains(identifier) || contains(windowClass);
}

bool PasteChords::contains(std::string_view name) const {
  return terminals_.contains(lowerCase(name));
}

}  // namespace quorlo
