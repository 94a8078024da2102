#pragma once

#include "platform/insertion/insertion_profile.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

struct InsertionEntry {
  std::string application;  // a desktop-file identifier or a window class
  InsertionProfile profile;

  bool operator==(const InsertionEntry&) const = default;
};

// Which applications take what is inserted in another way than most: those known to this program, and the
// user's own. Upper and lower case are the same. Immutable.
class InsertionTable {
 public:
  // Of several entries for one application the last counts, and any of them before a known one.
  explicit InsertionTable(const std::vector<InsertionEntry>& users = {});

  // Either name may be empty. The usual profile for an application without an entry.
  const InsertionProfile& profileFor(std::string_view identifier, std::string_view windowClass) const;

 private:
  using Profiles = std::map<std::string, InsertionProfile, std::less<>>;  // by the name in lower case

  static const Profiles& known();

  Profiles users_;
};

}  // namespace quorlo
