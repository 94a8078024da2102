#pragma once

#include "store/context/managed_object.h"
#include "store/context/record_set.h"

#include <vector>

namespace quorlo {

// Keeps the two sides of a many-to-many relationship in step: `rights` of the left record and `lefts` of
// the right one. Both records count as changed; a side without a property of its own stays unchanged.
// False when nothing had to be done.
class Relationship {
 public:
  template <class Left, class Right>
  static bool join(Left& left, RecordSet<Right>& rights, const Property* leftProperty, Right& right,
                   RecordSet<Left>& lefts, const Property* rightProperty) {
    if (!left.sharesContextWith(right) || !rights.add(&right)) return false;
    lefts.add(&left);
    changed(left, leftProperty);
    changed(right, rightProperty);
    return true;
  }

  template <class Left, class Right>
  static bool part(Left& left, RecordSet<Right>& rights, const Property* leftProperty, Right& right,
                   RecordSet<Left>& lefts, const Property* rightProperty) {
    if (!rights.remove(&right)) return false;
    lefts.remove(&left);
    changed(left, leftProperty);
    changed(right, rightProperty);
    return true;
  }

  // The records as they are now, for a loop that parts them.
  template <class Record>
  static std::vector<Record*> copy(const RecordSet<Record>& records) {
    return {records.begin(), records.end()};
  }

 private:
  static void changed(ManagedObject& record, const Property* property) {
    if (property != nullptr) record.didChange(*property);
  }
};

}  // namespace quorlo
