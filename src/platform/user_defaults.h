#pragma once

#include "base/date.h"
#include "base/subscription.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace quorlo {

enum class DefaultsDomain {
  standard,
  appGroup,  // shared with the program's other processes
};

// A property-list value.
using DefaultsValue = std::variant<bool, std::int64_t, double, std::string, Date>;

// The stored settings of the user. Values are held in memory: reading touches no file. Main thread.
class UserDefaults {
 public:
  using Observer = std::function<void(DefaultsDomain domain, const std::string& key)>;

  virtual ~UserDefaults() = default;

  // Absent when nothing is stored. A stored value may have any type, whatever was written last: files are
  // edited by hand too. The pointer holds until the domain changes next.
  virtual const DefaultsValue* value(DefaultsDomain domain, std::string_view key) const = 0;

  // Stored before the call returns as far as this process can see, and on disk soon after. A failure to
  // write is logged; the value still holds for this run.
  virtual void setValue(DefaultsDomain domain, std::string_view key, DefaultsValue value) = 0;
  virtual void removeValue(DefaultsDomain domain, std::string_view key) = 0;

  // Tells of values that another process changed; not of this process's own writes.
  virtual Subscription observeExternalChanges(Observer observer) = 0;
};

}  // namespace quorlo
