#include "store/exchange/library_exchange.h"
#include "store/exchange/library_exchange_reading.h"
#include "store/records/ql_snippet.h"
#include "text/json_reader.h"
#include "text/rich_text/rich_text_json.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

namespace quorlo {

using nlohmann::json;
using nlohmann::ordered_json;

std::u16string exchangedTitle(const QLSnippet& snippet) {
  const bool isDerived = !snippet.titleIsCustom() && snippet.title() == titleFromText(snippet.plainText());
  return isDerived ? std::u16string() : snippet.title();
}

SnippetExchange exchangeForm(const QLSnippet& snippet) {
  return {snippet.uuid(), exchangedTitle(snippet), snippet.text(), snippet.formatted(),
          snippet.abbreviation()};
}

ordered_json toJson(const SnippetExchange& snippet) {
  return {
      {"uuid", snippet.uuid},
      {"title", toUtf8(snippet.title)},
      {"text", toJson(snippet.text)},
      {"formatted", snippet.formatted},
      {"abbreviation", toUtf8(snippet.abbreviation)},
  };
}

Result<SnippetExchange> snippetFromJson(const json& value) {
  if (!value.is_object()) return Error{"A snippet is an object with the key text and four others."};
  JsonReader reader;
  auto snippet = readSnippet(reader, value, "");
  if (reader.error()) return *reader.error();
  return snippet;
}

std::u16string readName(JsonReader& reader, const json& value, const std::string& place) {
  auto name = reader.utf16(value, place);
  if (name.find(u'\0') != name.npos) reader.fail(place, "holds a NUL character: remove it.");
  return name;
}

SnippetExchange readSnippet(JsonReader& reader, const json& value, const std::string& place) {
  SnippetExchange snippet;
  bool hasText = false;
  bool hasType = false;
  reader.members(value, place, [&](const std::string& key, const json& member, const std::string& at) {
    if (key == "uuid") {
      snippet.uuid = reader.utf8(member, at);
    } else if (key == "title") {
      snippet.title = readName(reader, member, at);
    } else if (key == "text") {
      hasText = true;
      snippet.text = reader.valueOr(fromJson(member), at);
    } else if (key == "formatted") {
      hasType = true;
      snippet.formatted = readInteger(reader, member, at);
      if (!snippetType(snippet.formatted)) {
        reader.fail(at, "is no type of snippet: use 0 (plain text), 1 (formatted), 2 (image) or 8 (code).");
      }
    } else if (key == "abbreviation") {
      if (!member.is_null()) snippet.abbreviation = readName(reader, member, at);
    } else {
      reader.fail(at, "is not a key of a snippet, which has uuid, title, text, formatted and abbreviation.");
    }
  });
  if (!hasText) {
    reader.fail(place.empty() ? "text" : place + ".text", "is missing: every snippet needs a text.");
  }
  if (!hasType && !snippet.text.isPlain()) {
    snippet.formatted = static_cast<std::int64_t>(SnippetType::formatted);
  }
  return snippet;
}

}  // namespace quorlo
