#pragma once

#include "platform/insertion/insertion_target.h"
#include "x11/desktop/active_window.h"

#include <functional>

namespace quorlo {

class InsertionTable;

// The active window as the place where snippets go. Main thread.
class X11InsertionTarget : public InsertionTarget {
 public:
  // Without a table the one of the known applications counts.
  X11InsertionTarget(std::function<ActiveWindow()> activeWindow,
                     std::function<const InsertionTable&()> table);

  InsertionProfile profile() const override;
  Toolkit toolkit() const override;
  ActiveWindow window() const { return activeWindow_(); }

 private:
  std::function<ActiveWindow()> activeWindow_;
  std::function<const InsertionTable&()> table_;
};

}  // namespace quorlo
