#pragma once

#include <string_view>

namespace quorlo {

// The media types under which snippets and folders stand on the pasteboard and in drag-and-drop: a
// snippet in its exchange form, a folder as a library document of its own.
inline constexpr std::string_view kSnippetTypeIdentifier = "application/x-quorlo-snippet+json";
inline constexpr std::string_view kFolderTypeIdentifier = "application/x-quorlo-folder+json";

}  // namespace quorlo
