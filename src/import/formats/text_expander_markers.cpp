#include "import/formats/text_expander_markers.h"

#include "base/localized.h"
#include "import/formats/date_markers.h"
#include "import/formats/fill_in_markers.h"
#include "import/formats/macro_text_writer.h"
#include "macros/macro_type.h"
#include "store/localized_format.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace quorlo {
namespace {

constexpr auto kNowhere = std::u16string_view::npos;
constexpr std::u16string_view kPartEnd = u"%fillpartend%";
constexpr std::size_t kLongestQuotation = 40;
constexpr std::size_t kMostListed = 20;  // markers of one text

struct KeyName {
  std::u16string_view name;
  SpecialKeyMacroValue key;
};

constexpr KeyName kKeyNames[] = {
    {u"tab", SpecialKeyMacroValue::tab},         {u"return", SpecialKeyMacroValue::returnKey},
    {u"enter", SpecialKeyMacroValue::returnKey}, {u"esc", SpecialKeyMacroValue::escape},
    {u"escape", SpecialKeyMacroValue::escape},   {u"space", SpecialKeyMacroValue::space},
};

constexpr KeyName kArrows[] = {
    {u"%<", SpecialKeyMacroValue::leftArrow},
    {u"%>", SpecialKeyMacroValue::rightArrow},
    {u"%^", SpecialKeyMacroValue::upArrow},
    {u"%v", SpecialKeyMacroValue::downArrow},
};

std::u16string keyMacro(SpecialKeyMacroValue key) {
  return macroMarkup(MacroType::specialKey, {{u"value", std::u16string(rawValue(key))}});
}

std::u16string lowerCase(std::u16string_view text) {
  std::u16string result(text);
  for (auto& each : result) {
    if (each >= u'A' && each <= u'Z') each = static_cast<char16_t>(each + (u'a' - u'A'));
  }
  return result;
}

bool isLetter(char16_t each) {
  return (each >= u'a' && each <= u'z') || (each >= u'A' && each <= u'Z');
}

class MarkerTranslation {
 public:
  explicit MarkerTranslation(std::u16string_view text) : text_(text) {}

  TranslatedText run() {
    while (position_ < text_.size()) {
      const auto sign = std::min(text_.find(u'%', position_), text_.size());
      appendText(text_.substr(position_, sign - position_));
      position_ = sign;
      if (position_ < text_.size()) translateMarker();
      if (writer_.size() > kLongestMacroText) break;
    }
    endDate();
    keepRest();
    auto written = writer_.finish();
    if (auto notice = literalNotice(written.signs); !notice.empty()) addNotice(std::move(notice));
    return {std::move(written.text), std::move(notices_)};
  }

 private:
  std::u16string_view rest() const { return text_.substr(position_); }

  void keepRest() {
    if (rest().empty()) return;
    writer_.appendText(rest());
    addNotice(localized(u"The text is too long. The markers at its end were kept as text."));
  }

  // At a percent sign; moves behind what it takes.
  void translateMarker() {
    if (const auto date = dateMarkerAt(rest())) return appendDate(*date);
    if (const auto offset = dateOffsetMarkerAt(rest())) return moveDates(*offset);
    if (rest().starts_with(u"%%")) return takeText(2, u"%");
    if (rest().starts_with(u"%|")) return takeMacro(2, std::u16string(macroTemplate(MacroType::cursor)));
    // The plain text of the clipboard, by the description.
    if (rest().starts_with(u"%clipboard"))
      return takeMacro(10, macroMarkup(MacroType::clipboard, {{u"pasteText", u"1"}}));
    if (translateArrow() || translateNamed()) return;
    keepMarker();
  }

  bool translateArrow() {
    for (const auto& [marker, key] : kArrows) {
      if (!rest().starts_with(marker)) continue;
      takeMacro(marker.size(), keyMacro(key));
      return true;
    }
    return false;
  }

  // "%name:arguments%"; false for any other.
  bool translateNamed() {
    const auto end = text_.find(u'%', position_ + 1);
    if (end == kNowhere) return false;
    const auto inside = text_.substr(position_ + 1, end - position_ - 1);
    const auto colon = inside.find(u':');
    if (colon == kNowhere) return false;
    const auto name = inside.substr(0, colon);
    const auto arguments = inside.substr(colon + 1);
    const auto length = inside.size() + 2;
    if (name == u"snippet") {
      takeMacro(length, macroMarkup(MacroType::snippet, {{u"abbreviation", std::u16string(arguments)}}));
      return true;
    }
    if (name == u"key") return translateKey(arguments, length);
    if (name == u"fillpart") return translatePart(arguments, length);
    const auto field = fillInMacro(name, arguments);
    if (field) takeMacro(length, *field);
    return field.has_value();
  }

  bool translateKey(std::u16string_view name, std::size_t length) {
    const auto* const found = std::ranges::find(kKeyNames, lowerCase(name), &KeyName::name);
    if (found == std::end(kKeyNames)) return false;
    takeMacro(length, keyMacro(found->key));
    return true;
  }

  // A part that may be left out is a list of two entries, itself and nothing, if there is only text in it.
  bool translatePart(std::u16string_view arguments, std::size_t length) {
    const auto start = position_ + length;
    if (partEnd_ != kNowhere && partEnd_ < start) partEnd_ = text_.find(kPartEnd, start);
    if (partEnd_ == kNowhere) return false;
    const auto content = unescapedText(text_.substr(start, partEnd_ - start));
    if (!content) return false;
    takeMacro(partEnd_ + kPartEnd.size() - position_, optionalPartMacro(arguments, *content));
    return true;
  }

  // Absent when there is a marker in it.
  static std::optional<std::u16string> unescapedText(std::u16string_view text) {
    std::u16string result;
    for (auto sign = text.find(u'%'); sign != kNowhere; sign = text.find(u'%')) {
      if (!text.substr(sign).starts_with(u"%%")) return std::nullopt;
      result += text.substr(0, sign + 1);
      text.remove_prefix(sign + 2);
    }
    return result += text;
  }

  void appendDate(const DateMarker& marker) {
    date_.appendSeparator(std::exchange(separator_, {}));
    date_.append(marker);
    position_ += marker.length;
  }

  void moveDates(const DateOffsetMarker& offset) {
    endDate();
    const auto moved = offset_ ? sum(*offset_, offset) : offset;
    if (!moved) return keep(offset.length);
    if (offset_) addNotice(localized(u"Several date offsets in one text are added up. Check the dates."));
    offset_ = moved;
    position_ += offset.length;
  }

  // Signs and words that are markers without a counterpart, or none that is known.
  void keepMarker() {
    if (rest().starts_with(kPartEnd)) return keep(kPartEnd.size());
    const auto next = rest().size() > 1 ? rest()[1] : u' ';
    if (!isLetter(next) && std::u16string_view(u"@+-\\").find(next) == kNowhere) return takeText(1, u"%");
    keep(namedMarkerLength().value_or(2));
  }

  // Of letters, a colon and anything up to a percent sign on the same line.
  std::optional<std::size_t> namedMarkerLength() const {
    std::size_t colon = 1;
    while (colon < rest().size() && isLetter(rest()[colon])) ++colon;
    if (colon == rest().size() || rest()[colon] != u':') return std::nullopt;
    const auto end = rest().find_first_of(u"%\n\r", colon);
    if (end == kNowhere || rest()[end] != u'%') return std::nullopt;
    return end + 1;
  }

  void keep(std::size_t length) {
    const auto marker = rest().substr(0, length);
    if (kept_.size() <= kMostListed && std::ranges::find(kept_, marker) == kept_.end()) {
      kept_.push_back(marker);
      addNotice(kept_.size() > kMostListed
                    ? localized(u"More markers without a counterpart were kept as text.")
                    : keptNotice(marker));
    }
    takeText(length, marker);
  }

  static std::u16string keptNotice(std::u16string_view marker) {
    std::u16string quoted(marker.substr(0, kLongestQuotation));
    if (quoted.size() < marker.size()) quoted += u'…';
    return localizedFormat(u"“%@” has no counterpart here and was kept as text.", quoted);
  }

  void takeText(std::size_t length, std::u16string_view text) {
    endDate();
    writer_.appendText(text);
    position_ += length;
  }

  void takeMacro(std::size_t length, std::u16string_view markup) {
    endDate();
    writer_.appendMacro(markup);
    position_ += length;
  }

  // What may yet be part of a date's format waits for the next marker.
  void appendText(std::u16string_view text) {
    if (!date_.isEmpty() && DateMacroBuilder::isSeparator(text)) {
      separator_ = text;
    } else {
      endDate();
      writer_.appendText(text);
    }
  }

  void endDate() {
    if (!date_.isEmpty()) writer_.appendMacro(date_.take(offset_));
    writer_.appendText(std::exchange(separator_, {}));
  }

  void addNotice(std::u16string notice) {
    if (std::ranges::find(notices_, notice) == notices_.end()) notices_.push_back(std::move(notice));
  }

  std::u16string_view text_;
  std::size_t position_ = 0;
  std::size_t partEnd_ = 0;  // of the next part whose end was looked for; nowhere when there is none any more
  MacroTextWriter writer_;
  DateMacroBuilder date_;
  std::u16string_view separator_;  // between the last date marker and what follows
  std::optional<DateOffsetMarker> offset_;
  std::vector<std::u16string_view> kept_;  // markers that are listed, each once
  std::vector<std::u16string> notices_;
};

}  // namespace

TranslatedText translateTextExpanderMarkers(std::u16string_view text) {
  return MarkerTranslation(text).run();
}

}  // namespace quorlo
