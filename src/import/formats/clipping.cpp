#include "import/formats/clipping.h"

#include "base/localized.h"
#include "import/formats/imported_folders.h"
#include "import/formats/known_image.h"
#include "import/formats/macro_text_writer.h"
#include "import/formats/property_lists/property_list_path.h"
#include "import/formats/property_lists/read_property_list.h"
#include "text/utf.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace quorlo {
namespace {

// The upper half of the encoding, by https://www.unicode.org/Public/MAPPINGS/VENDORS/APPLE/ROMAN.TXT
constexpr std::u16string_view kMacRoman =
    u"ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø¿¡¬√ƒ≈∆«»…\u00A0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ"
    u"\uF8FFÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";
static_assert(kMacRoman.size() == 128);

std::u16string fromMacRoman(const PropertyList::Data& bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  for (const auto byte : bytes) text += byte < 0x80 ? static_cast<char16_t>(byte) : kMacRoman[byte - 0x80U];
  return text;
}

// Little endian, as the machines that write clippings are, unless a byte order mark says otherwise.
std::u16string fromUtf16(const PropertyList::Data& bytes) {
  const bool isBigEndian = bytes.size() > 1 && bytes[0] == 0xFE && bytes[1] == 0xFF;
  std::u16string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const unsigned first = bytes[i];
    const unsigned second = bytes[i + 1];
    text += static_cast<char16_t>(isBigEndian ? first << 8U | second : second << 8U | first);
  }
  return text.starts_with(u'\uFEFF') ? text.substr(1) : text;
}

std::u16string fromUtf8(const PropertyList::Data& bytes) {
  return toUtf16({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

struct TextForm {
  std::string_view key;
  std::u16string (*decode)(const PropertyList::Data&);
};

// The best first.
constexpr std::array kTextForms{TextForm{"public.utf8-plain-text", fromUtf8},
                                TextForm{"public.utf16-plain-text", fromUtf16},
                                TextForm{"public.utf16-external-plain-text", fromUtf16},
                                TextForm{"com.apple.traditional-mac-plain-text", fromMacRoman}};

constexpr std::array<std::string_view, 4> kFormattedForms{"public.rtf", "com.apple.flat-rtfd", "public.html",
                                                          "com.apple.webarchive"};

Result<std::optional<std::u16string>> textOf(const PropertyList& forms, const PropertyListPath& path) {
  for (const auto& [key, decode] : kTextForms) {
    const auto* const value = forms.find(key);
    if (!value) continue;
    if (const auto* text = value->as<std::u16string>()) return std::optional(*text);
    if (const auto* data = value->as<PropertyList::Data>()) return std::optional(decode(*data));
    return wrongKind(*value, {path, key}, localized(u"a text"));
  }
  return std::optional<std::u16string>();
}

bool isFormatted(const PropertyList& forms) {
  return std::ranges::any_of(kFormattedForms,
                             [&](std::string_view key) { return forms.find(key) != nullptr; });
}

// The first that is known here.
bool takePicture(const PropertyList::Dictionary& forms, ImportedSnippet& snippet) {
  for (const auto& [key, value] : forms) {
    const auto* const bytes = value.as<PropertyList::Data>();
    if (!bytes || imageMediaType(*bytes).empty()) continue;
    placePicture(snippet, *bytes, imageMediaType(*bytes));
    return true;
  }
  return false;
}

// A file without content, a resource fork, or one that was packed beside its file (AppleSingle and
// AppleDouble, RFC 1740).
bool isResourceFork(std::string_view bytes) {
  constexpr std::array<std::string_view, 3> kStarts{{{"\0\0\1\0", 4}, {"\0\5\x16\0", 4}, {"\0\5\x16\7", 4}}};
  return bytes.empty() ||
         std::ranges::any_of(kStarts, [&](std::string_view start) { return bytes.starts_with(start); });
}

Result<ImportData> readForms(const PropertyList& forms, const PropertyListPath& path,
                             std::string_view fileName) {
  const auto* const dictionary = forms.as<PropertyList::Dictionary>();
  if (!dictionary) return wrongKind(forms, path, localized(u"a dictionary"));
  auto text = textOf(forms, path);
  if (!text) return text.error();
  ImportData data;
  ImportedSnippet snippet;
  snippet.title = titleOfFile(fileName);
  const auto addNotice = [&](std::u16string message) {
    data.notices.push_back({snippet.title, std::move(message)});
  };
  if (text.value() && !text.value()->empty()) {
    if (!isWellFormed(*text.value()) || text.value()->find(u'\uFFFD') != std::u16string::npos) {
      addNotice(localized(u"The text of the clipping is damaged; some characters cannot be read."));
    }
    auto literal = literalMacroText(*text.value());
    snippet.text = AttributedString(std::move(literal.text));
    if (auto notice = literalNotice(literal.signs); !notice.empty()) addNotice(std::move(notice));
    if (isFormatted(forms)) addNotice(localized(u"Only the text was kept, without its formatting."));
  } else if (!takePicture(*dictionary, snippet)) {
    return Error{toUtf8(
        localized(u"The clipping holds no text and no picture that can be read here. Open it on the Mac, "
                  u"copy its content, and paste that into a snippet."))};
  }
  data.snippets.push_back(std::move(snippet));
  return data;
}

}  // namespace

Result<ImportData> readClipping(std::string_view bytes, std::string_view fileName) {
  if (isResourceFork(bytes))
    return Error{toUtf8(
        localized(u"The clipping has its content in a resource fork, which is lost or cannot be read "
                  u"outside of the Mac. Open it there, copy its text, and save that as a text file."))};
  const auto list = readPropertyList(bytes);
  if (!list) return list.error();
  const auto* const forms = list.value().find("UTI-Data");
  if (!forms)
    return Error{toUtf8(
        localized(u"The file is no clipping: it has no key “UTI-Data”. Make the clipping again, or save "
                  u"its text as a text file."))};
  return readForms(*forms, {PropertyListPath(), "UTI-Data"}, fileName);
}

}  // namespace quorlo
