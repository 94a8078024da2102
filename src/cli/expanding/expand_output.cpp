#include "cli/expanding/expand_output.h"

#include "text/html_writer.h"
#include "text/utf.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

namespace quorlo {
namespace {

using Json = nlohmann::ordered_json;

constexpr char16_t kAttachmentCharacter = 0xFFFC;

std::optional<std::u16string_view> characterOf(const KeyStep& key) {
  if (key.type == "return") return u"\n";
  if (key.type == "tab") return u"\t";
  if (key.type == "space") return u" ";
  return std::nullopt;
}

std::string nameOf(const KeyStep& key) {
  if (key.type == kClipboardKey || key.type == kClipboardTextKey) return "the clipboard";
  if (!key.combination) return "the key " + key.type;
  return fmt::format("the key combination with code {} and flags {:#x}", key.combination->keyCode,
                     key.combination->flags);
}

Json keyJson(const KeyStep& key) {
  if (key.type == kClipboardKey || key.type == kClipboardTextKey) {
    return {{"clipboard", key.type == kClipboardTextKey ? "text" : "any"}};
  }
  if (!key.combination) return {{"key", key.type}};
  return {{"key", "combination"}, {"code", key.combination->keyCode}, {"modFlags", key.combination->flags}};
}

void addText(Json& pieces, const AttributedString& text) {
  if (text.empty()) return;
  Json piece{{"text", plainForm(text)}};
  if (!text.isPlain()) piece["html"] = toHtml(text);
  pieces.push_back(std::move(piece));
}

}  // namespace

ExpandedText inOneText(const PreparedSnippet& prepared) {
  ExpandedText result;
  for (std::size_t i = 0; i < prepared.pieces.size(); ++i) {
    result.text.append(prepared.pieces[i]);
    if (i >= prepared.keys.size()) continue;
    const auto& key = prepared.keys[i];
    if (const auto character = characterOf(key)) {
      result.text.append(*character);
    } else if (auto name = nameOf(key); std::ranges::find(result.leftOut, name) == result.leftOut.end()) {
      result.leftOut.push_back(std::move(name));
    }
  }
  return result;
}

std::string plainForm(const AttributedString& text) {
  auto plain = text.string();
  std::erase(plain, kAttachmentCharacter);
  return toUtf8(plain);
}

Json piecesJson(const PreparedSnippet& prepared) {
  auto pieces = Json::array();
  std::size_t start = 0;  // of the piece, in the whole text
  for (std::size_t i = 0; i < std::max(prepared.pieces.size(), prepared.keys.size()); ++i) {
    const auto piece = i < prepared.pieces.size() ? prepared.pieces[i] : AttributedString();
    if (prepared.cursorRange && prepared.cursorPiece == i) {
      const auto before = prepared.cursorRange->location - start;
      addText(pieces, piece.slice({0, before}));
      pieces.push_back({{"cursor", true}});
      addText(pieces, piece.slice({before, piece.size() - before}));
    } else {
      addText(pieces, piece);
    }
    if (i < prepared.keys.size()) pieces.push_back(keyJson(prepared.keys[i]));
    start += piece.size();
  }
  // Behind the last key, which nothing follows.
  if (prepared.cursorRange &&
      prepared.cursorPiece >= std::max(prepared.pieces.size(), prepared.keys.size())) {
    pieces.push_back({{"cursor", true}});
  }
  return pieces;
}

}  // namespace quorlo
