#pragma once

#include "base/date.h"
#include "base/result.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3_stmt;

namespace quorlo {

class SqliteDatabase;

// One use of a compiled statement: bind the parameters (from 1), then step through the rows or run it to
// its end. Goes back to its database when it ends. What fails before the first step, compiling included,
// is reported by that step.
class SqliteStatement {
 public:
  SqliteStatement(const SqliteStatement&) = delete;
  SqliteStatement& operator=(const SqliteStatement&) = delete;
  ~SqliteStatement();

  // Values are copied. Dates are stored as whole microseconds since 1970, rounded down; texts as UTF-8, in
  // which a lone surrogate becomes U+FFFD.
  SqliteStatement& bind(int parameter, std::nullptr_t);
  template <std::integral T>
  SqliteStatement& bind(int parameter, T value) {
    return bindInteger(parameter, static_cast<std::int64_t>(value));
  }
  SqliteStatement& bind(int parameter, double value);
  SqliteStatement& bind(int parameter, Date value);
  SqliteStatement& bind(int parameter, std::string_view utf8);
  SqliteStatement& bind(int parameter, std::u16string_view text);
  SqliteStatement& bind(int parameter, std::span<const std::uint8_t> blob);
  template <class T>
  SqliteStatement& bind(int parameter, const std::optional<T>& value) {
    return value ? bind(parameter, *value) : bind(parameter, nullptr);
  }

  // True when it stands on a row.
  Result<bool> step();
  // To the end, whatever rows there are, and ready for other values.
  Status run();
  // Ready for other values, which must all be bound again; ends the reading of rows.
  void reset();

  // Of the current row, columns from 0; NULL reads as zero or empty. Views hold until the next step.
  bool isNull(int column) const;
  std::int64_t integer(int column) const;
  std::optional<std::int64_t> optionalInteger(int column) const;
  double real(int column) const;
  std::optional<Date> date(int column) const;
  std::string_view text(int column) const;
  std::u16string text16(int column) const;
  std::span<const std::uint8_t> blob(int column) const;

 private:
  friend class SqliteDatabase;
  SqliteStatement(SqliteDatabase& database, sqlite3_stmt* statement, std::vector<sqlite3_stmt*>* home,
                  Status state)
      : database_(database), statement_(statement), home_(home), state_(std::move(state)) {}

  SqliteStatement& bindInteger(int parameter, std::int64_t value);
  SqliteStatement& note(int code);

  SqliteDatabase& database_;
  sqlite3_stmt* statement_;           // null when it could not be compiled
  std::vector<sqlite3_stmt*>* home_;  // where the database keeps it while idle
  Status state_;                      // the first failure
};

}  // namespace quorlo
