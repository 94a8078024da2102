#include "import/export/csv_field.h"

namespace quorlo {
namespace {

bool isLineEnd(char character) {
  return character == '\r' || character == '\n';
}

// The reader divides at a comma or line feed behind an even number of quotes and takes the outer pair of a
// field's quotes away, no other. So there are two ways to write a value that it can give back, and what
// decides is on which side of the value's own quotes the separators lie.
bool keepsTogether(std::string_view value, bool startsInQuotes) {
  bool isInQuotes = startsInQuotes;
  for (const char each : value) {
    if (each == '"') {
      isInQuotes = !isInQuotes;
    } else if (!isInQuotes && (each == ',' || each == '\n')) {
      return false;
    }
  }
  return isInQuotes == startsInQuotes;
}

// Line ends at the ends of a row are taken away.
bool canStandBare(std::string_view value, CsvPlace place) {
  if (value.empty()) return true;
  if (value.front() == '"' && value.back() == '"') return false;
  if (place == CsvPlace::first && isLineEnd(value.front())) return false;
  if (place == CsvPlace::last && isLineEnd(value.back())) return false;
  return keepsTogether(value, false);
}

std::string quoted(std::string_view value) {
  std::string text = "\"";
  return text.append(value) += '"';
}

std::string withDoubledQuotes(std::string_view value) {
  std::string text;
  text.reserve(value.size() + 2);
  for (const char each : value) text.append(each == '"' ? 2 : 1, each);
  return text;
}

}  // namespace

// A carriage return ends the row in some other programs.
CsvField csvField(std::string_view value, CsvPlace place) {
  const bool canBeBare = canStandBare(value, place);
  const bool canBeQuoted = keepsTogether(value, true);
  if (canBeBare && !(canBeQuoted && value.find('\r') != value.npos)) return {std::string(value), true};
  if (canBeQuoted) return {quoted(value), true};
  return {quoted(withDoubledQuotes(value)), false};
}

}  // namespace quorlo
