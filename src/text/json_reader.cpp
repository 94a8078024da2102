#include "text/json_reader.h"

#include "text/utf.h"

#include <cmath>
#include <cstdint>

namespace quorlo {

using nlohmann::json;

void JsonReader::fail(const std::string& place, const std::string& what) {
  if (!error_) error_ = Error{"\"" + place + "\" " + what};
}

std::string JsonReader::utf8(const json& value, const std::string& place) {
  return toUtf8(utf16(value, place));
}

std::u16string JsonReader::utf16(const json& value, const std::string& place) {
  if (value.is_string()) return valueOr(toUtf16Strict(value.get_ref<const std::string&>()), place);
  fail(place, "is not a string.");
  return {};
}

bool JsonReader::boolean(const json& value, const std::string& place) {
  if (value.is_boolean()) return value.get<bool>();
  fail(place, "is neither true nor false.");
  return false;
}

std::size_t JsonReader::count(const json& value, const std::string& place) {
  // A value built by a program, unlike one that was parsed, may hold a positive number as signed.
  if (value.is_number_unsigned() || (value.is_number_integer() && value.get<std::int64_t>() >= 0)) {
    return value.get<std::size_t>();
  }
  fail(place, "is not a whole number from 0 up.");
  return 0;
}

double JsonReader::positiveNumber(const json& value, const std::string& place) {
  const auto number = value.is_number() ? value.get<double>() : 0.0;
  if (!std::isfinite(number) || number <= 0) fail(place, "is not a number above 0.");
  return number;
}

std::string JsonReader::placeOfMember(const std::string& place, const std::string& key) {
  if (!toUtf16Strict(key)) fail(place, "has a key that is not valid UTF-8.");
  return place.empty() ? key : place + "." + key;
}

}  // namespace quorlo
