#include "macros/dates/custom_date_format.h"

#include "macros/dates/date_and_time_formatter.h"

#include <cstddef>
#include <optional>
#include <utility>

namespace quorlo {
namespace {

// The next piece of a format: literal text, or a run behind its percent sign.
struct Piece {
  std::u16string_view text;  // as it stands in the format
  std::u16string_view run;   // empty for literal text

  char16_t letter() const { return run.empty() ? u'\0' : run.front(); }
};

std::size_t characterLength(std::u16string_view text) {
  const bool pair =
      text.size() > 1 && text[0] >= 0xD800 && text[0] < 0xDC00 && text[1] >= 0xDC00 && text[1] < 0xE000;
  return pair ? 2 : 1;
}

// Walks through a format piece by piece.
class FormatScanner {
 public:
  explicit FormatScanner(std::u16string_view format) : rest_(format) {}

  std::optional<Piece> next() {
    if (rest_.empty()) return std::nullopt;
    // A percent sign at the end has nothing to take and is literal.
    if (rest_.front() != u'%' || rest_.size() == 1) return Piece{take(rest_.find(u'%', 1)), {}};
    const auto character = rest_.substr(1, characterLength(rest_.substr(1)));
    auto end = 1 + character.size();
    while (rest_.substr(end, character.size()) == character) end += character.size();
    const auto text = take(end);
    return Piece{text, text.substr(1)};
  }

 private:
  std::u16string_view take(std::size_t length) {
    const auto taken = rest_.substr(0, length);
    rest_.remove_prefix(taken.size());
    return taken;
  }

  std::u16string_view rest_;
};

bool hasHoursOfTheDay(std::u16string_view format) {
  FormatScanner scanner(format);
  while (const auto piece = scanner.next()) {
    if (piece->letter() == u'H') return true;
  }
  return false;
}

// The two halves of a clock's time must not differ in their digits.
bool isClockField(char16_t letter) {
  return letter == u'H' || letter == u'm' || letter == u's' || letter == u'S';
}

}  // namespace

std::vector<CustomDateFormatPiece> tokenizeCustomDateFormat(std::u16string_view format) {
  std::vector<CustomDateFormatPiece> pieces;
  FormatScanner scanner(format);
  while (const auto piece = scanner.next()) {
    if (piece->letter() == u'1') {
      pieces.emplace_back(PlainDateToken{u"%1111"});
    } else if (piece->letter() == u'2') {
      pieces.emplace_back(PlainDateToken{u"%2222"});
    } else if (!piece->run.empty()) {
      pieces.emplace_back(QLDateToken{std::u16string(piece->text)});
    } else if (!pieces.empty() && std::holds_alternative<std::u16string>(pieces.back())) {
      std::get<std::u16string>(pieces.back()) += piece->text;
    } else {
      pieces.emplace_back(std::u16string(piece->text));
    }
  }
  return pieces;
}

std::u16string formatCustomDate(std::u16string_view format, Moment date, DateAndTimeFormatter& formatter) {
  const auto& user = formatter.userContext();
  const DateContext clock{"en_US_POSIX", user.timeZone};
  const bool hasClock = hasHoursOfTheDay(format);
  std::u16string result;
  FormatScanner scanner(format);
  while (const auto piece = scanner.next()) {
    if (piece->run.empty()) {
      result += piece->text;
    } else if (piece->letter() == u'1') {
      result += u':';
    } else if (piece->letter() == u'2') {
      result += u'?';
    } else {
      const auto& context = hasClock && isClockField(piece->letter()) ? clock : user;
      result += formatter.string(date, context, piece->run);
    }
  }
  return result;
}

}  // namespace quorlo
