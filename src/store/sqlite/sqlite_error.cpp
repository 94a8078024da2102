#include "store/sqlite/sqlite_error.h"

#include <sqlite3.h>

#include <cerrno>
#include <string>

namespace quorlo {
namespace {

constexpr int primary(int extendedCode) {
  return extendedCode & 0xff;
}

std::string_view whatToDo(int code, int systemErrno) {
  constexpr std::string_view kFull = "the disk is full. Make room on it, then try again.";
  constexpr std::string_view kForbidden =
      "it may not be written. Give yourself the right to write to the file and to the folder around it.";
  if (systemErrno == ENOSPC || systemErrno == EDQUOT) return kFull;
  switch (primary(code)) {
    case SQLITE_FULL:
      return kFull;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "another program holds it. Close that program, then try again.";
    case SQLITE_READONLY:
    case SQLITE_PERM:
      return kForbidden;
    case SQLITE_CANTOPEN:
      if (systemErrno == EACCES || systemErrno == EPERM || systemErrno == EROFS) return kForbidden;
      return "it cannot be opened. See that the file and the folder around it are there and that you may "
             "read and write both.";
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return "it is damaged. Put a backup in its place, or move it away to begin anew.";
    case SQLITE_IOERR:
      return "the disk reports an error. Check the disk and its free space, then try again.";
    case SQLITE_NOMEM:
      return "there is not enough memory. Close other programs, then try again.";
    default:
      return "it cannot be used.";
  }
}

}  // namespace

Error sqliteError(const std::filesystem::path& file, int extendedCode, int systemErrno,
                  std::string_view sqliteText) {
  std::string message = "The library \"" + file.string() + "\": ";
  message += whatToDo(extendedCode, systemErrno);
  message += " (SQLite: ";
  message += sqliteText;
  message += ", code " + std::to_string(extendedCode) + ")";
  return {std::move(message)};
}

bool saysDamaged(int extendedCode) {
  return primary(extendedCode) == SQLITE_CORRUPT || primary(extendedCode) == SQLITE_NOTADB ||
         extendedCode == SQLITE_IOERR_SHORT_READ;
}

bool saysHeld(int extendedCode) {
  return primary(extendedCode) == SQLITE_BUSY || primary(extendedCode) == SQLITE_LOCKED;
}

bool saysUnwritable(int extendedCode) {
  const int code = primary(extendedCode);
  return code == SQLITE_READONLY || code == SQLITE_CANTOPEN || code == SQLITE_PERM || code == SQLITE_FULL ||
         (code == SQLITE_IOERR && !saysDamaged(extendedCode));
}

}  // namespace quorlo
