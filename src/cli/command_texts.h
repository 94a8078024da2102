#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace quorlo {

// What --help and the manual page say of the command line as a whole. ASCII.

inline constexpr auto kStartText = "Without a command, starts Quorlo, or brings up the one that runs.";

inline constexpr auto kLibraryText =
    "The commands for snippets need no display and no running Quorlo; one that runs sees what they change at "
    "once. Texts are UTF-8. Results go to standard output, everything else to standard error. With --json the "
    "result is one JSON document.";

inline constexpr std::array<std::pair<int, std::string_view>, 4> kExitStatusTexts{
    {{0, "Done"},
     {1, "Failed, or nothing was found; standard error says what"},
     {2, "Wrong usage"},
     {130, "Interrupted by Ctrl-C; nothing was changed"}}};

inline constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kFileTexts{
    {{"$XDG_DATA_HOME/org.quorlo.Quorlo/private.sqlite",
      "The library; $XDG_DATA_HOME is ~/.local/share where it is not set"},
     {"$XDG_DATA_HOME/org.quorlo.Quorlo/backups/", "Copies of the library, the 10 newest"},
     {"$XDG_CONFIG_HOME/quorlo/", "The settings; $XDG_CONFIG_HOME is ~/.config where it is not set"}}};

inline std::string helpFooter() {
  auto text = std::string(kStartText) + "\n\n" + kLibraryText + "\n\nExit status:";
  for (const auto& [status, meaning] : kExitStatusTexts) {
    text += "\n  " + std::to_string(status) + "  " + std::string(meaning);
  }
  return text;
}

}  // namespace quorlo
