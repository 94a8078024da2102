#pragma once

#include "base/result.h"
#include "text/attributed_string.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

class QLCategory;
class QLSnippet;

// The parts of a library as they are exchanged (dragged, exported, imported), apart from any context.
// docs/formats.md describes their JSON forms. Reading is strict: an unknown key or a value of the wrong
// kind is an error that names its place.

struct SnippetExchange {
  std::string uuid;  // empty when it has none
  std::u16string title;
  AttributedString text;
  std::int64_t formatted = 0;  // the raw value of a SnippetType
  std::u16string abbreviation;
};

// Empty where it is derived from the text, from which a reader derives it again.
std::u16string exchangedTitle(const QLSnippet& snippet);

// An object with the keys "uuid", "title", "text", "formatted" and "abbreviation", in this order.
SnippetExchange exchangeForm(const QLSnippet& snippet);
nlohmann::ordered_json toJson(const SnippetExchange& snippet);
Result<SnippetExchange> snippetFromJson(const nlohmann::json& value);

struct FolderExchange {
  std::string uuid;  // empty when it has none
  std::u16string title;
  std::int64_t type = 0;  // Folder or SharedFolder
  std::int64_t sort = 0;
  std::optional<std::int64_t> shortcutKeyCode;
  std::int64_t shortcutModifierFlags = 0;
  std::int64_t expansionBehavior = 0;
  std::vector<std::string> allowedApps;  // bundle identifiers
  std::vector<std::string> blockedApps;
  std::vector<std::string> snippets;  // uuids
};

// Without its snippets, whose uuids in a document the writer of the document knows.
FolderExchange exchangeForm(const QLCategory& folder);
nlohmann::ordered_json toJson(const FolderExchange& folder);

struct LibraryExchange {
  std::vector<SnippetExchange> snippets;
  std::vector<FolderExchange> folders;
  std::vector<std::string> excludedApplications;  // bundle identifiers
};

// Every snippet and folder has a uuid afterwards: one that lacks it gets one that follows from its
// content. No uuid stands twice, and no snippet in two folders; a snippet or folder that repeats another
// without a uuid in all it holds is left out.
Result<LibraryExchange> libraryFromJson(const nlohmann::json& value);

}  // namespace quorlo
