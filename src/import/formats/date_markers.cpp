#include "import/formats/date_markers.h"

#include "import/formats/macro_text_writer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace quorlo {
namespace {

using Unit = DateAndTimeMacroMathType;

struct Field {
  std::u16string_view marker;
  std::u16string_view field;
  bool isTime;
};

// "%e" has no leading blank, unlike strftime's: the example of the description is "January 3".
constexpr Field kFields[] = {
    {u"%a", u"%EEE", false}, {u"%A", u"%EEEE", false}, {u"%b", u"%MMM", false}, {u"%B", u"%MMMM", false},
    {u"%d", u"%dd", false},  {u"%e", u"%d", false},    {u"%m", u"%MM", false},  {u"%1m", u"%M", false},
    {u"%y", u"%yy", false},  {u"%Y", u"%yyyy", false}, {u"%H", u"%HH", true},   {u"%1H", u"%H", true},
    {u"%I", u"%hh", true},   {u"%1I", u"%h", true},    {u"%M", u"%mm", true},   {u"%1M", u"%m", true},
    {u"%S", u"%ss", true},   {u"%1S", u"%s", true},    {u"%p", u"%a", true},
};

struct OffsetUnit {
  char16_t letter;
  Unit unit;
  std::int64_t count;
};

constexpr OffsetUnit kOffsetUnits[] = {
    {u'Y', Unit::years, 1}, {u'M', Unit::months, 1},  {u'W', Unit::days, 7},    {u'D', Unit::days, 1},
    {u'h', Unit::hours, 1}, {u'm', Unit::minutes, 1}, {u's', Unit::seconds, 1},
};

constexpr std::u16string_view kSeparators = u" ,./-:";
constexpr std::size_t kLongestSeparator = 4;

// Few enough that no sum overflows.
constexpr std::size_t kMostOffsetDigits = 9;

// The same time in the smallest unit that measures it.
DateOffsetMarker inSmallestUnit(DateOffsetMarker offset) {
  switch (offset.unit) {
    case Unit::years:
      return {offset.length, offset.amount * 12, Unit::months};
    case Unit::hours:
      return {offset.length, offset.amount * 3600, Unit::seconds};
    case Unit::minutes:
      return {offset.length, offset.amount * 60, Unit::seconds};
    default:
      return offset;
  }
}

std::u16string_view rawValue(Unit unit) {
  static constexpr std::array<std::u16string_view, 6> kNames{u"seconds", u"minutes", u"hours",
                                                             u"days",    u"months",  u"years"};
  return kNames[static_cast<std::size_t>(unit)];
}

std::u16string decimal(std::int64_t number) {
  const auto digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

}  // namespace

std::optional<DateMarker> dateMarkerAt(std::u16string_view text) {
  const auto* const found =
      std::ranges::find_if(kFields, [&](const Field& field) { return text.starts_with(field.marker); });
  if (found == std::end(kFields)) return std::nullopt;
  return DateMarker{found->marker.size(), found->field, found->isTime};
}

std::optional<DateOffsetMarker> dateOffsetMarkerAt(std::u16string_view text) {
  if (!text.starts_with(u"%@+") && !text.starts_with(u"%@-")) return std::nullopt;
  auto end = std::min(text.find_first_not_of(u"0123456789", 3), text.size());
  if (end == 3 || end > 3 + kMostOffsetDigits || end == text.size()) return std::nullopt;
  const auto* const unit = std::ranges::find(kOffsetUnits, text[end], &OffsetUnit::letter);
  const auto amount = readInteger(text.substr(2, end - 2));
  if (unit == std::end(kOffsetUnits) || !amount) return std::nullopt;
  return DateOffsetMarker{end + 1, *amount * unit->count, unit->unit};
}

std::optional<DateOffsetMarker> sum(DateOffsetMarker first, DateOffsetMarker second) {
  if (first.unit != second.unit) {
    first = inSmallestUnit(first);
    second = inSmallestUnit(second);
  }
  if (first.unit != second.unit) return std::nullopt;
  constexpr std::int64_t kMost = 1'000'000'000'000'000;
  const auto amount = first.amount + second.amount;
  if (amount > kMost || amount < -kMost) return std::nullopt;
  return DateOffsetMarker{second.length, amount, first.unit};
}

void DateMacroBuilder::append(const DateMarker& marker) {
  format_ += marker.field;
  isTime_ = isTime_ && marker.isTime;
}

bool DateMacroBuilder::isSeparator(std::u16string_view text) {
  return text.size() <= kLongestSeparator && text.find_first_not_of(kSeparators) == text.npos;
}

void DateMacroBuilder::appendSeparator(std::u16string_view text) {
  for (const char16_t each : text) {
    // A macro's value cannot hold a colon; this run stands for one in a date format.
    format_ += each == u':' ? std::u16string_view(u"%1111") : std::u16string_view(&each, 1);
  }
}

std::u16string DateMacroBuilder::take(const std::optional<DateOffsetMarker>& offset) {
  const std::u16string_view other = isTime_ ? u"dateLength" : u"timeLength";
  const std::u16string_view custom = isTime_ ? u"timeLength" : u"dateLength";
  const std::u16string_view format = isTime_ ? u"timeFormat" : u"dateFormat";
  std::vector<MacroArgument> arguments{{std::u16string(custom), u"custom"},
                                       {std::u16string(format), std::exchange(format_, {}), Escaping::none},
                                       {std::u16string(other), u"none"}};
  if (offset) {
    arguments.push_back({u"math", decimal(offset->amount)});
    arguments.push_back({u"mathType", std::u16string(rawValue(offset->unit))});
  }
  isTime_ = true;
  return macroMarkup(MacroType::date, arguments);
}

}  // namespace quorlo
