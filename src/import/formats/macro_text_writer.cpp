#include "import/formats/macro_text_writer.h"

#include "base/localized.h"
#include "macros/find_macros.h"
#include "text/text_range.h"

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

// A percent sign and a letter. There is no escape for the sign outside of values, but in a custom date format
// "%%" is one. The letter is in the macro because the macro's own end would begin "%clipboard%" with what
// follows.
std::u16string percentSignAndLetter(char16_t letter) {
  return u"%date:dateLength=custom:dateFormat=%%" + std::u16string(1, letter) + u":timeLength=none:date%";
}

struct JoinedText {
  std::u16string text;
  std::vector<TextRange> macros;

  void append(std::u16string_view piece, bool isMacro) {
    if (isMacro) macros.push_back({text.size(), piece.size()});
    text += piece;
  }

  bool readsAsWritten() const {
    return std::ranges::equal(readableMacros(text), macros, {}, &MacroOccurrence::range);
  }
};

bool beginsWithMacroName(std::u16string_view text) {
  return std::ranges::any_of(kAllMacroTypes,
                             [&](MacroType type) { return text.starts_with(rawValue(type)); });
}

void appendWithoutOpenings(JoinedText& joined, std::u16string_view text) {
  std::size_t done = 0;
  for (auto sign = text.find(u'%'); sign != text.npos; sign = text.find(u'%', sign + 1)) {
    if (!beginsWithMacroName(text.substr(sign + 1))) continue;
    joined.append(text.substr(done, sign - done), false);
    joined.append(percentSignAndLetter(text[sign + 1]), true);
    done = sign + 2;
  }
  joined.append(text.substr(done), false);
}

}  // namespace

std::u16string macroMarkup(MacroType type, const std::vector<MacroArgument>& arguments) {
  std::u16string markup = u"%";
  markup += rawValue(type);
  for (const auto& [name, value, escaping] : arguments) {
    markup.append(1, macroSeperatorCharacter).append(name).append(1, u'=');
    markup.append(escaping == Escaping::escape ? escapeMacroValue(value) : value);
  }
  return markup.append(1, macroSeperatorCharacter).append(rawValue(type)).append(1, u'%');
}

std::u16string literalNotice(LiteralSigns signs) {
  switch (signs) {
    case LiteralSigns::kept:
      break;
    case LiteralSigns::written:
      return localized(u"A percent sign that would begin a macro is written as a macro itself.");
    case LiteralSigns::misread:
      return localized(u"A part of the text reads as a macro. Check it before you use it.");
  }
  return {};
}

void MacroTextWriter::appendText(std::u16string_view text) {
  if (text.empty()) return;
  size_ += text.size();
  if (pieces_.empty() || pieces_.back().isMacro) pieces_.push_back({{}, false});
  pieces_.back().text += text;
}

void MacroTextWriter::appendMacro(std::u16string_view markup) {
  size_ += markup.size();
  pieces_.push_back({std::u16string(markup), true});
}

MacroTextWriter::Result MacroTextWriter::finish() const {
  JoinedText joined;
  for (const auto& [text, isMacro] : pieces_) joined.append(text, isMacro);
  if (joined.readsAsWritten()) return {std::move(joined.text), LiteralSigns::kept};
  if (joined.text.size() > kLongestMacroText) return {std::move(joined.text), LiteralSigns::misread};
  JoinedText changed;
  for (const auto& [text, isMacro] : pieces_) {
    if (isMacro) {
      changed.append(text, true);
    } else {
      appendWithoutOpenings(changed, text);
    }
  }
  if (changed.readsAsWritten()) return {std::move(changed.text), LiteralSigns::written};
  return {std::move(joined.text), LiteralSigns::misread};
}

MacroTextWriter::Result literalMacroText(std::u16string_view text) {
  MacroTextWriter writer;
  writer.appendText(text);
  return writer.finish();
}

}  // namespace quorlo
