#pragma once

#include "base/result.h"

#include <filesystem>
#include <string_view>

namespace quorlo {

// A failure of SQLite in words for the user: the file, what is wrong with it, what to do, SQLite's own
// text and its extended code. `systemErrno` tells a full disk from a broken one; 0 when unknown.
Error sqliteError(const std::filesystem::path& file, int extendedCode, int systemErrno,
                  std::string_view sqliteText);

// The contents are not those of a sound database.
bool saysDamaged(int extendedCode);

// Another program has it, longer than was waited.
bool saysHeld(int extendedCode);

// Something could not be written, in the file or beside it.
bool saysUnwritable(int extendedCode);

}  // namespace quorlo
