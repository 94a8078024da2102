#pragma once

#include "base/result.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace quorlo {

class QLSnippet;

// What is asked of the library for every key that the user types. Main thread.
class ExpansionLookup {
 public:
  virtual ~ExpansionLookup() = default;

  // A fetch of "Snippet" with limit 1 and the predicate "(abbreviation == %@) AND (deletionDate == nil
  // AND (category == nil OR category.sourceType != 20))"; null when there is none. Exact and
  // case-sensitive. Of several the one created first, by uuid where that is equal. Constant time
  // whatever the library's size, without allocation; a text that is longer than every abbreviation, or as
  // long as none, costs nothing.
  virtual Result<std::shared_ptr<QLSnippet>> liveSnippet(std::u16string_view abbreviation) const = 0;

  // A fetch of "App" with "(bundleID == %@) AND (type == %d)" finds a record. Constant time. The types
  // are those of AppType; the identifier is UTF-8, and an empty one is never found.
  virtual Result<bool> hasApp(std::string_view bundleID, std::int64_t type) const = 0;
};

}  // namespace quorlo
