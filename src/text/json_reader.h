#pragma once

#include "base/result.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <optional>
#include <string>

namespace quorlo {

// Reads values that may be anything. A value of the wrong kind reads as empty and is recorded as the
// error, so that a reader can go on to its end and ask once; the first error is kept. `place` names a
// value in the error: "runs[2].bold".
class JsonReader {
 public:
  const std::optional<Error>& error() const { return error_; }
  void fail(const std::string& place, const std::string& what);

  std::string utf8(const nlohmann::json& value, const std::string& place);
  std::u16string utf16(const nlohmann::json& value, const std::string& place);
  bool boolean(const nlohmann::json& value, const std::string& place);
  std::size_t count(const nlohmann::json& value, const std::string& place);
  double positiveNumber(const nlohmann::json& value, const std::string& place);

  template <class T>
  T valueOr(Result<T> result, const std::string& place) {
    if (result) return std::move(result).value();
    fail(place, "is damaged: " + result.error().message);
    return {};
  }

  // `visit(key, member, place)` for each member of an object, until something fails.
  template <class Visitor>
  void members(const nlohmann::json& object, const std::string& place, Visitor visit) {
    if (!object.is_object()) return fail(place, "is not an object");
    for (const auto& [key, member] : object.items()) {
      const auto at = placeOfMember(place, key);
      if (error_) return;
      visit(key, member, at);
    }
  }

 private:
  std::string placeOfMember(const std::string& place, const std::string& key);

  std::optional<Error> error_;
};

}  // namespace quorlo
