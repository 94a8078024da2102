#include "x11/desktop/x11_insertion_target.h"

#include "platform/insertion/insertion_table.h"
#include "x11/desktop/process_toolkit.h"

#include <utility>

namespace quorlo {

X11InsertionTarget::X11InsertionTarget(std::function<ActiveWindow()> activeWindow,
                                       std::function<const InsertionTable&()> table)
    : activeWindow_(std::move(activeWindow)), table_(std::move(table)) {}

InsertionProfile X11InsertionTarget::profile() const {
  static const InsertionTable kKnownApplications;
  const auto window = activeWindow_();
  return (table_ ? table_() : kKnownApplications).profileFor(window.bundleIdentifier, window.windowClass);
}

// A terminal's toolkit draws its frame only.
Toolkit X11InsertionTarget::toolkit() const {
  if (profile().pastesSelection) return Toolkit::terminal;
  return toolkitOfProcess(activeWindow_().processIdentifier);
}

}  // namespace quorlo
