#include "engine/paste/piece_contents.h"

#include "store/records/snippet_type.h"
#include "text/attributed_string.h"
#include "text/html_writer.h"
#include "text/utf.h"

#include <algorithm>
#include <string>

namespace quorlo {
namespace {

constexpr char16_t kAttachmentCharacter = 0xFFFC;

// Pictures have no place in plain text.
std::u16string plainForm(std::u16string text) {
  std::erase(text, kAttachmentCharacter);
  return text;
}

bool isBlank(const std::u16string& text) {
  return text.find_first_not_of(u" \t\n") == std::u16string::npos;
}

void addHtml(PasteboardItem& item, const AttributedString& piece) {
  const auto html = toHtml(piece);
  item.setData(PasteboardType(pasteboard_type::kHtml), PasteboardData(html.begin(), html.end()));
}

void addFirstPicture(PasteboardItem& item, const AttributedString& piece) {
  for (std::size_t i = 0; i < piece.runCount(); ++i) {
    const auto& image = piece.runAt(i).attributes.image;
    if (image && image->bytes) {
      item.setData(image->mediaType, *image->bytes);
      return;
    }
  }
}

}  // namespace

PasteboardItem onlyText(const PasteboardItem& item) {
  PasteboardItem result;
  if (const auto text = item.text()) result.setText(*text);
  return result;
}

PasteboardItem pieceContents(const AttributedString& piece, SnippetType type) {
  PasteboardItem item;
  const auto plain = plainForm(piece.string());
  if (type == SnippetType::image) addFirstPicture(item, piece);
  // Where nothing is styled, HTML would only bring the style of its reader's defaults.
  const bool mayBeRich = type == SnippetType::image || type == SnippetType::formatted;
  if (mayBeRich && !piece.isPlain()) addHtml(item, piece);
  // Beside a picture, blank text would be taken for the content by programs that prefer text.
  if (type != SnippetType::image || !isBlank(plain)) item.setText(toUtf8(plain));
  return item;
}

}  // namespace quorlo
