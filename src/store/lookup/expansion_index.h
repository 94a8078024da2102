#pragma once

#include "store/lookup/abbreviation_index.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace quorlo {

class QLApp;

// Where the context finds in constant time what is asked for every typed key. The setters of the
// records keep it current.
class ExpansionIndex {
 public:
  AbbreviationIndex abbreviations;  // of the live snippets

  void addApp(const std::string& bundleID, std::int64_t type);
  void removeApp(const std::string& bundleID, std::int64_t type);
  bool hasApp(std::string_view bundleID, std::int64_t type) const;

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
  };
  // One element per record.
  std::unordered_multimap<std::string, std::int64_t, Hash, std::equal_to<>> apps_;
};

}  // namespace quorlo
