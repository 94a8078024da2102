#include "base/iso_date.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <cstddef>
#include <cstdint>

namespace quorlo {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;

// Takes the parts of a text from its beginning, one after the other.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  bool atEnd() const { return rest_.empty(); }

  bool take(std::string_view anyOf) {
    if (rest_.empty() || anyOf.find(rest_.front()) == anyOf.npos) return false;
    rest_.remove_prefix(1);
    return true;
  }

  // Exactly so many digits; -1 where they are not there.
  int number(std::size_t digits) {
    if (rest_.size() < digits) return -1;
    int value = 0;
    for (const char digit : rest_.substr(0, digits)) {
      if (digit < '0' || digit > '9') return -1;
      value = value * 10 + (digit - '0');
    }
    rest_.remove_prefix(digits);
    return value;
  }

  // A fraction of a second; what is finer than a millisecond is dropped.
  std::optional<milliseconds> fraction() {
    milliseconds value{0};
    int unit = 100;
    bool any = false;
    for (; !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9'; unit /= 10) {
      value += milliseconds(unit * number(1));
      any = true;
    }
    return any ? std::optional(value) : std::nullopt;
  }

 private:
  std::string_view rest_;
};

std::optional<std::chrono::local_days> readDay(Reader& reader) {
  const int year = reader.number(4);
  if (year < 0 || !reader.take("-")) return std::nullopt;
  const int month = reader.number(2);
  if (month < 0 || !reader.take("-")) return std::nullopt;
  const int day = reader.number(2);
  if (day < 0) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  return date.ok() ? std::optional(std::chrono::local_days(date)) : std::nullopt;
}

std::optional<milliseconds> readTime(Reader& reader) {
  const int hour = reader.number(2);
  if (hour < 0 || hour > 23 || !reader.take(":")) return std::nullopt;
  const int minute = reader.number(2);
  if (minute < 0 || minute > 59) return std::nullopt;
  milliseconds time = std::chrono::hours(hour) + minutes(minute);
  if (!reader.take(":")) return time;
  const int second = reader.number(2);
  if (second < 0 || second > 59) return std::nullopt;
  time += std::chrono::seconds(second);
  if (!reader.take(".,")) return time;
  const auto fraction = reader.fraction();
  return fraction ? std::optional(time + *fraction) : std::nullopt;
}

std::optional<minutes> readOffset(Reader& reader) {
  if (reader.take("Z")) return minutes(0);
  const int sign = reader.take("-") ? -1 : 1;
  if (sign > 0 && !reader.take("+")) return std::nullopt;
  const int hour = reader.number(2);
  if (hour < 0 || hour > 23) return std::nullopt;
  if (reader.atEnd()) return minutes(sign * hour * 60);
  reader.take(":");
  const int minute = reader.number(2);
  return minute < 0 || minute > 59 ? std::nullopt : std::optional(minutes(sign * (hour * 60 + minute)));
}

}  // namespace

std::string isoDate(Date moment) {
  const auto exact = std::chrono::floor<milliseconds>(moment);
  const auto second = std::chrono::floor<std::chrono::seconds>(exact);
  const auto calendar = fmt::gmtime(second.time_since_epoch().count());
  return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z", calendar, (exact - second).count());
}

std::optional<IsoDateTime> readIsoDateTime(std::string_view text) {
  Reader reader(text);
  const auto day = readDay(reader);
  if (!day) return std::nullopt;
  IsoDateTime read{*day, {}};
  if (reader.atEnd()) return read;
  if (!reader.take("T ")) return std::nullopt;
  const auto time = readTime(reader);
  if (!time) return std::nullopt;
  read.local += *time;
  if (reader.atEnd()) return read;
  read.offset = readOffset(reader);
  return read.offset && reader.atEnd() ? std::optional(read) : std::nullopt;
}

std::optional<Date> readIsoDate(std::string_view text) {
  const auto read = readIsoDateTime(text);
  if (!read) return std::nullopt;
  const milliseconds since1970 = read->local.time_since_epoch() - read->offset.value_or(minutes(0));
  const bool isHeld = since1970 > std::chrono::ceil<milliseconds>(Date::min().time_since_epoch()) &&
                      since1970 < std::chrono::floor<milliseconds>(Date::max().time_since_epoch());
  return isHeld ? std::optional<Date>(Date(since1970)) : std::nullopt;
}

}  // namespace quorlo
