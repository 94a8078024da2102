#pragma once

#include <string_view>

namespace quorlo {

// The media types under which snippets and folders stand on the pasteboard and in drag-and-drop, in
// their exchange form.
inline constexpr std::string_view kSnippetTypeIdentifier = "application/x-quorlo-snippet+json";
inline constexpr std::string_view kFolderTypeIdentifier = "application/x-quorlo-folder+json";

}  // namespace quorlo
