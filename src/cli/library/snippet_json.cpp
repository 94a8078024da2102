#include "cli/library/snippet_json.h"

#include "base/iso_date.h"
#include "cli/library/snippet_type_names.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

namespace quorlo {
namespace {

using Json = nlohmann::ordered_json;

Json orNull(std::optional<Date> date) {
  return date ? Json(isoDate(*date)) : Json();
}

Json orNull(const std::u16string& text) {
  return text.empty() ? Json() : Json(toUtf8(text));
}

Json folderJson(const QLSnippet& snippet) {
  const auto folder = snippet.category();
  if (!folder) return {};
  return {{"uuid", folder->uuid()}, {"title", toUtf8(folder->title())}};
}

}  // namespace

Json snippetJson(const QLSnippet& snippet) {
  return {{"uuid", snippet.uuid()},
          {"title", toUtf8(snippet.title())},
          {"abbreviation", orNull(snippet.abbreviation())},
          {"type", nameOf(snippet.formatted())},
          {"folder", folderJson(snippet)},
          {"useCount", snippet.useCount()},
          {"created", orNull(snippet.creationDate())},
          {"modified", orNull(snippet.modifiedDate())},
          {"deleted", orNull(snippet.deletionDate())},
          {"text", toUtf8(snippet.plainText())}};
}

Json snippetsJson(const std::vector<std::shared_ptr<QLSnippet>>& snippets) {
  auto list = Json::array();
  for (const auto& each : snippets) list.push_back(snippetJson(*each));
  return {{"snippets", std::move(list)}};
}

}  // namespace quorlo
