#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>

namespace quorlo {

// Which applications paste by another chord than Control-V: terminals, where that types a control
// character. Shift-Insert pastes in all of them, in most from the primary selection. Immutable.
class PasteChords {
 public:
  // The terminals known to this program and those of the user's file: one desktop-file identifier or
  // window class a line; empty lines and lines beginning with # do not count. A file that does not exist
  // names none.
  explicit PasteChords(const std::filesystem::path& userFile = {});

  // Either name may be empty. Upper and lower case are the same.
  bool pastesFromPrimary(std::string_view identifier, std::string_view windowClass) const;

 private:
  bool contains(std::string_view name) const;

  std::set<std::string, std::less<>> terminals_;  // in lower case
};

}  // namespace quorlo
