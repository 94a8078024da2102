#include "text/html_writer.h"

#include "text/attributed_string.h"
#include "text/base64.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>

namespace quorlo {
namespace {

constexpr char16_t kObjectReplacement = 0xFFFC;

// The older form of the charset declaration is the one that every reader of pasted HTML knows.
constexpr std::string_view kHead =
    "<!DOCTYPE html>\n<html><head><meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\">"
    "</head><body>";
// No line break at the end: Qt would paste it as a space.
constexpr std::string_view kTail = "</body></html>";

std::string escaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string cssColor(const Color& color) {
  if (color.alpha == 255) return fmt::format("#{:02x}{:02x}{:02x}", color.red, color.green, color.blue);
  return fmt::format("rgba({},{},{},{:.3f})", color.red, color.green, color.blue, color.alpha / 255.0);
}

// In a CSS string a backslash escapes; a line break would end it.
std::string cssString(std::string_view text) {
  std::string out = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') out += '\\';
    out += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
  }
  return out + "'";
}

std::string style(const TextAttributes& attributes) {
  std::string css;
  if (attributes.fontFamily) css += "font-family:" + cssString(*attributes.fontFamily) + ";";
  if (const auto& size = attributes.fontSizePoints; size && std::isfinite(*size) && *size > 0) {
    css += fmt::format("font-size:{}pt;", *size);
  }
  if (attributes.foreground) css += "color:" + cssColor(*attributes.foreground) + ";";
  if (attributes.background) css += "background-color:" + cssColor(*attributes.background) + ";";
  return css;
}

struct Tags {
  std::string open;
  std::string close;

  void nest(std::string_view name, std::string_view parameters = {}) {
    open += fmt::format("<{}{}>", name, parameters);
    close = fmt::format("</{}>", name) + close;
  }
};

Tags tagsFor(const TextAttributes& attributes) {
  Tags tags;
  if (attributes.link) tags.nest("a", " href=\"" + escaped(*attributes.link) + "\"");
  if (attributes.bold) tags.nest("b");
  if (attributes.italic) tags.nest("i");
  if (attributes.underline) tags.nest("u");
  if (attributes.strikethrough) tags.nest("s");
  if (const auto css = style(attributes); !css.empty()) tags.nest("span", " style=\"" + escaped(css) + "\"");
  return tags;
}

class Writer {
 public:
  explicit Writer(std::u16string_view text) : text_(text) {}

  void writeRun(const AttributedString::Run& run) {
    // Runs that differ only in what has no look share their tags.
    auto tags = tagsFor(run.attributes);
    if (tags.open != tags_.open) {
      out_ += tags_.close + tags.open;
      tags_ = std::move(tags);
    }
    auto wordStart = run.range.location;
    for (auto i = run.range.location; i < run.range.end(); ++i) {
      if (!isSpecial(text_[i])) continue;
      writeWord(wordStart, i);
      if (text_[i] == u' ') {
        i = writeBlanks(i, run.range.end());
      } else {
        writeSpecial(i, run.attributes);
      }
      wordStart = i + 1;
    }
    writeWord(wordStart, run.range.end());
  }

  std::string finish() {
    out_ += tags_.close;
    out_ += kTail;
    return std::move(out_);
  }

 private:
  static bool isLineBreak(char16_t c) {
    return c == u'\n' || c == u'\r' || c == 0x85 || c == 0x2028 || c == 0x2029;
  }
  static bool isControl(char16_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); }
  static bool isSpecial(char16_t c) {
    return c == u' ' || c == 0xA0 || c == kObjectReplacement || isLineBreak(c) || isControl(c);
  }

  void writeWord(std::size_t start, std::size_t end) {
    if (start == end) return;
    out_ += escaped(toUtf8(text_.substr(start, end - start)));
    blankIsDropped_ = false;
  }

  // Writes the blanks from `start` on and returns where the last of them is. Every reader keeps a single
  // blank between words. Others need their own style for browsers and Qt, and a reference for LibreOffice,
  // which knows no such style and still drops a blank that begins a line or follows another one: that one
  // does not wrap.
  std::size_t writeBlanks(std::size_t start, std::size_t limit) {
    const auto end = std::min(text_.find_first_not_of(u' ', start), limit);
    auto count = end - start;
    if (blankIsDropped_) {
      out_ += "&nbsp;";
      --count;
    }
    const bool lastInLine = end == text_.size() || isLineBreak(text_[end]);
    if (count == 1 && !lastInLine) {
      out_ += ' ';
    } else if (count > 0) {
      out_ += "<span style=\"white-space:pre-wrap\">";
      for (std::size_t i = 0; i < count; ++i) out_ += "&#32;";
      out_ += "</span>";
    }
    blankIsDropped_ = count > 0;
    return end - 1;
  }

  void writeSpecial(std::size_t i, const TextAttributes& attributes) {
    const auto c = text_[i];
    if (isLineBreak(c)) {
      const bool secondHalf = c == u'\n' && i > 0 && text_[i - 1] == u'\r';
      if (!secondHalf) out_ += "<br>";
      blankIsDropped_ = true;
    } else if (c == 0xA0) {
      out_ += "&nbsp;";
      blankIsDropped_ = false;
    } else if (c == u'\t') {
      out_ += "<span style=\"white-space:pre\">&#9;</span>";
      blankIsDropped_ = false;
    } else if (c == kObjectReplacement && attributes.image && attributes.image->bytes) {
      out_ += fmt::format("<img src=\"data:{};base64,{}\">", escaped(attributes.image->mediaType),
                          toBase64(*attributes.image->bytes));
      blankIsDropped_ = false;
    }
  }

  std::u16string_view text_;
  std::string out_{kHead};
  Tags tags_;                   // of the run being written
  bool blankIsDropped_ = true;  // by a reader, of an ordinary blank written here
};

}  // namespace

std::string toHtml(const AttributedString& text) {
  Writer writer(text.string());
  text.forEachRun([&](const AttributedString::Run& run) { writer.writeRun(run); });
  return writer.finish();
}

}  // namespace quorlo
