#include "platform/insertion/insertion_table.h"

#include "base/ascii.h"

#include <array>

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

// Ctrl+V scrolls in Emacs. In gVim's insert mode it quotes the next key; Ctrl+R Ctrl+O Plus puts in the
// clipboard as it is, without indenting it, in its command line too.
constexpr auto kOthers = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"emacs", "paste Shift+Insert"},
    {"emacs-gtk", "paste Shift+Insert"},
    {"emacs-lucid", "paste Shift+Insert"},
    {"emacs-pgtk", "paste Shift+Insert"},
    {"org.gnu.emacs", "paste Shift+Insert"},
    {"gvim", "paste Ctrl+R Ctrl+O Plus"},
    {"vim-gtk3", "paste Ctrl+R Ctrl+O Plus"},
    // Keys that follow caret moves within half a second are put in before them.
    {"libreoffice-writer", "pause 0.5"},
    {"libreoffice-web", "pause 0.5"},
    {"libreoffice-calc", "pause 0.5"},
    {"libreoffice-impress", "pause 0.5"},
    {"libreoffice-draw", "pause 0.5"},
});

}  // namespace

InsertionTable::InsertionTable(const std::vector<InsertionEntry>& users) {
  for (const auto& entry : users) users_[lowerCase(entry.application)] = entry.profile;
}

const InsertionProfile& InsertionTable::profileFor(std::string_view identifier,
                                                   std::string_view windowClass) const {
  static const InsertionProfile kUsual;
  for (const auto* const profiles : {&users_, &known()}) {
    for (const auto name : {identifier, windowClass}) {
      const auto found = profiles->find(lowerCase(name));
      if (found != profiles->end()) return found->second;
    }
  }
  return kUsual;
}

const InsertionTable::Profiles& InsertionTable::known() {
  static const auto profiles = [] {
    Profiles all;
    for (const auto name : kKnownTerminals) all.emplace(name, terminalProfile());
    for (const auto& [name, profile] : kOthers) all.emplace(name, parseInsertionProfile(profile).value());
    return all;
  }();
  return profiles;
}

}  // namespace quorlo
