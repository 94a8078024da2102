#pragma once

#include "base/result.h"

#include <cstddef>
#include <filesystem>
#include <string>

namespace quorlo {

class WorkProgress;

// More than any library of snippets holds, and little enough to be read whole.
inline constexpr std::size_t kLargestImportedFile = std::size_t{256} << 20;

// The content of a file that the user has chosen, as it was at one moment: a file that changes meanwhile is
// refused, as are folders, devices, pipes and files that are too large. The error names the file and says
// what to do. Any thread.
Result<std::string> readFileBytes(const std::filesystem::path& file, WorkProgress& progress);

// "<file> cannot be read: <reason>."; the reason is a localized part of a sentence.
Error cannotRead(const std::filesystem::path& file, std::u16string_view reason);

// The error of every reader that was cancelled. Who has asked for it shows none.
Error importWasCancelled();

}  // namespace quorlo
