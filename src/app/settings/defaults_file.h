#pragma once

#include "base/result.h"
#include "platform/user_defaults.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace quorlo {

struct DefaultsKeyHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view key) const { return std::hash<std::string_view>()(key); }
};
using DefaultsValues = std::unordered_map<std::string, DefaultsValue, DefaultsKeyHash, std::equal_to<>>;

// What is to be written; an absent value removes the key.
using DefaultsChanges = std::map<std::string, std::optional<DefaultsValue>, std::less<>>;

// One domain of settings on disk: a JSON object (RFC 8259) with a member per key, for the user to edit
// too. Dates are objects with the single member "date", in ISO 8601 (UTC, milliseconds). Members that
// are none of a setting's types are ignored and kept.
class DefaultsFile {
 public:
  explicit DefaultsFile(std::filesystem::path path);

  const std::filesystem::path& path() const { return path_; }

  // Nothing is no error: without a file there are no values.
  Result<DefaultsValues> read() const;

  // Applies the changes to what the file holds now, in one step for every other process. A file that
  // cannot be read is logged and kept under another name; `known` then takes its place. A new
  // file is the user's alone (mode 0600).
  Status write(const DefaultsValues& known, const DefaultsChanges& changes) const;

 private:
  std::filesystem::path path_;
};

// As it will be read back: dates in whole milliseconds; absent for a number that JSON cannot hold.
std::optional<DefaultsValue> storableValue(const DefaultsValue& value);

}  // namespace quorlo
