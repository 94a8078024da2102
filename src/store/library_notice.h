#pragma once

#include <string>

namespace quorlo {

// What has befallen the library's file and its user should know of.
struct LibraryNotice {
  enum class Kind {
    logWasSetAside,   // detail: the log's name now
    isDamaged,        // detail: the whole message
    savesFail,        // detail: the whole message; once, until a save succeeds again
    fileWasReplaced,  // detail: the file that keeps what was in memory; empty when there is none
    fileWasDeleted,   // it was written back; detail: the library's file
    cannotBeOpened,   // the file that was put in the library's place; detail: the whole message
  };
  Kind kind;
  std::string detail;
};

}  // namespace quorlo
