#pragma once

#include "platform/insertion/insertion_profile.h"
#include "platform/insertion/toolkit.h"

namespace quorlo {

// The application that receives keys and pastes now. Main thread.
class InsertionTarget {
 public:
  virtual ~InsertionTarget() = default;

  // How it takes what is inserted, by the table of applications.
  virtual InsertionProfile profile() const = 0;
  // Looks at the process, which takes about a millisecond.
  virtual Toolkit toolkit() const = 0;
};

}  // namespace quorlo
