#include "import/csv/text_decoding.h"

#include "import/file_bytes.h"
#include "import/work_progress.h"
#include "store/localized_format.h"
#include "text/utf.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>

#include <algorithm>
#include <memory>

namespace quorlo {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;

struct Encoding {
  TextEncoding id;
  const char* name;  // as ICU knows it
  std::string_view mark;
};

constexpr Encoding kUtf8{TextEncoding::utf8, "UTF-8", ""};
constexpr Encoding kWindows1252{TextEncoding::windows1252, "windows-1252", ""};
constexpr Encoding kMarkedEncodings[]{{TextEncoding::utf8, "UTF-8", "\xEF\xBB\xBF"},
                                      {TextEncoding::utf16LittleEndian, "UTF-16LE", "\xFF\xFE"},
                                      {TextEncoding::utf16BigEndian, "UTF-16BE", "\xFE\xFF"}};

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

Converter openConverter(const char* name) {
  UErrorCode error = U_ZERO_ERROR;
  Converter converter(ucnv_open(name, &error), &ucnv_close);
  if (converter) {
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
  }
  if (U_FAILURE(error)) converter.reset();
  return converter;
}

enum class Outcome { whole, illFormed, cancelled };

// Replaces `text`, up to the first ill-formed place. No encoding here makes more UTF-16 units than bytes.
Outcome convert(std::string_view bytes, UConverter& converter, std::u16string& text, WorkProgress& progress) {
  text.resize(bytes.size());
  auto* target = text.data();
  const auto* source = bytes.data();
  const auto* const end = source + bytes.size();
  auto outcome = Outcome::whole;
  while (source != end && outcome == Outcome::whole) {
    const auto* const blockEnd = source + std::min(kBlock, static_cast<std::size_t>(end - source));
    UErrorCode error = U_ZERO_ERROR;
    ucnv_toUnicode(&converter, &target, text.data() + text.size(), &source, blockEnd, nullptr,
                   static_cast<UBool>(blockEnd == end), &error);
    if (U_FAILURE(error)) outcome = Outcome::illFormed;
    if (progress.isCancelled()) outcome = Outcome::cancelled;
    progress.setFraction(static_cast<double>(source - bytes.data()) / static_cast<double>(bytes.size()));
  }
  text.resize(static_cast<std::size_t>(target - text.data()));
  return outcome;
}

Error atLine(std::u16string_view message, std::u16string_view before) {
  return {toUtf8(localizedFormat(message, 1 + std::ranges::count(before, u'\n')))};
}

Result<DecodedText> decodeAs(const Encoding& encoding, std::string_view bytes, WorkProgress& progress) {
  const auto converter = openConverter(encoding.name);
  if (!converter) return Error{toUtf8(localized(u"its encoding is unknown; save it in UTF-8"))};
  DecodedText decoded{{}, encoding.id};
  auto& text = decoded.text;
  const auto outcome = convert(bytes.substr(encoding.mark.size()), *converter, text, progress);
  if (outcome == Outcome::cancelled) return importWasCancelled();
  if (outcome == Outcome::illFormed) {
    if (encoding.mark.empty()) return decodeAs(kWindows1252, bytes, progress);
    return atLine(u"line %d is damaged, it does not keep to the encoding of the file; save it again in UTF-8",
                  text);
  }
  // Without a NUL byte there is no such character; that is told many times faster.
  const auto nul = bytes.find('\0') == bytes.npos ? text.npos : text.find(u'\0');
  if (nul != text.npos) {
    return atLine(u"line %d holds a NUL character, so this is no text; save the table as text in UTF-8",
                  std::u16string_view(text).substr(0, nul));
  }
  if (text.find(u'\n') == text.npos) std::ranges::replace(text, u'\r', u'\n');
  return decoded;
}

}  // namespace

Result<DecodedText> decodeText(std::string_view bytes, WorkProgress& progress) {
  for (const auto& encoding : kMarkedEncodings) {
    if (bytes.starts_with(encoding.mark)) return decodeAs(encoding, bytes, progress);
  }
  return decodeAs(kUtf8, bytes, progress);
}

}  // namespace quorlo
