#include "x11/desktop/x11_insertion_target.h"

#include "platform/insertion/insertion_table.h"

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

}  // namespace quorlo
