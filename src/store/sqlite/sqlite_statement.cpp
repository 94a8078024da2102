#include "store/sqlite/sqlite_statement.h"

#include "store/sqlite/sqlite_database.h"
#include "text/utf.h"

#include <sqlite3.h>

#include <chrono>

namespace quorlo {
namespace {

using std::chrono::microseconds;

// SQLite takes a null pointer for NULL, not for an empty value.
template <class T>
const T* orEmpty(const T* data) {
  static constexpr T kEmpty{};
  return data == nullptr ? &kEmpty : data;
}

}  // namespace

SqliteStatement::~SqliteStatement() {
  if (statement_ != nullptr) database_.release(statement_, *home_);
}

SqliteStatement& SqliteStatement::note(int code) {
  if (code != SQLITE_OK && state_) state_ = database_.failure(code);
  return *this;
}

SqliteStatement& SqliteStatement::bind(int parameter, std::nullptr_t) {
  return note(sqlite3_bind_null(statement_, parameter));
}

SqliteStatement& SqliteStatement::bindInteger(int parameter, std::int64_t value) {
  return note(sqlite3_bind_int64(statement_, parameter, value));
}

SqliteStatement& SqliteStatement::bind(int parameter, double value) {
  return note(sqlite3_bind_double(statement_, parameter, value));
}

SqliteStatement& SqliteStatement::bind(int parameter, Date value) {
  return bindInteger(parameter, std::chrono::floor<microseconds>(value).time_since_epoch().count());
}

SqliteStatement& SqliteStatement::bind(int parameter, std::string_view utf8) {
  return note(sqlite3_bind_text64(statement_, parameter, orEmpty(utf8.data()), utf8.size(), SQLITE_TRANSIENT,
                                  SQLITE_UTF8));
}

SqliteStatement& SqliteStatement::bind(int parameter, std::u16string_view text) {
  return bind(parameter, std::string_view(toUtf8(text)));
}

SqliteStatement& SqliteStatement::bind(int parameter, std::span<const std::uint8_t> blob) {
  return note(
      sqlite3_bind_blob64(statement_, parameter, orEmpty(blob.data()), blob.size(), SQLITE_TRANSIENT));
}

Result<bool> SqliteStatement::step() {
  if (!state_) return state_.error();
  switch (const int code = sqlite3_step(statement_)) {
    case SQLITE_ROW:
      return true;
    case SQLITE_DONE:
      return false;
    default:
      return database_.failure(code);
  }
}

Status SqliteStatement::run() {
  for (;;) {
    const auto row = step();
    if (!row) {
      if (statement_ != nullptr) sqlite3_reset(statement_);
      return row.error();
    }
    if (!row.value()) break;
  }
  reset();
  return {};
}

void SqliteStatement::reset() {
  if (statement_ == nullptr) return;
  sqlite3_reset(statement_);  // repeats the error of the last step, which was reported there
  sqlite3_clear_bindings(statement_);
}

bool SqliteStatement::isNull(int column) const {
  return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

std::int64_t SqliteStatement::integer(int column) const {
  return sqlite3_column_int64(statement_, column);
}

std::optional<std::int64_t> SqliteStatement::optionalInteger(int column) const {
  return isNull(column) ? std::nullopt : std::optional(integer(column));
}

double SqliteStatement::real(int column) const {
  return sqlite3_column_double(statement_, column);
}

std::optional<Date> SqliteStatement::date(int column) const {
  if (isNull(column)) return std::nullopt;
  return Date(std::chrono::duration_cast<Date::duration>(microseconds(integer(column))));
}

std::string_view SqliteStatement::text(int column) const {
  const auto* const data = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  if (data == nullptr) return {};
  return {data, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

std::u16string SqliteStatement::text16(int column) const {
  return toUtf16(text(column));
}

std::span<const std::uint8_t> SqliteStatement::blob(int column) const {
  const auto* const data = static_cast<const std::uint8_t*>(sqlite3_column_blob(statement_, column));
  if (data == nullptr) return {};
  return {data, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

}  // namespace quorlo
