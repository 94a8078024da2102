#pragma once

#include <fmt/format.h>

#include <string>

namespace quorlo {

// A library document of so many plain snippets; the first expands "sig".
inline std::string benchmarkLibrary(int snippets) {
  std::string text =
      R"({"snippets": [{"uuid": "SIG", "title": "sig", "text": "Kind regards", "formatted": 0, "abbreviation": "sig"})";
  for (int i = 1; i < snippets; ++i) {
    text += fmt::format(
        R"(, {{"uuid": "U{0}", "title": "Snippet {0}", "text": "The text of snippet {0}, a line of the usual length, with some more words", "formatted": 0, "abbreviation": "Q{0}"}})",
        i);
  }
  return text + "]}";
}

}  // namespace quorlo
