#pragma once

#include "platform/insertion/insertion_profile.h"

namespace quorlo {

// The application that receives keys and pastes now. Main thread.
class InsertionTarget {
 public:
  virtual ~InsertionTarget() = default;

  // How it takes what is inserted, by the table of applications.
  virtual InsertionProfile profile() const = 0;
};

}  // namespace quorlo
