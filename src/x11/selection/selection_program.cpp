#include "x11/selection/selection_program.h"

#include "x11/connection/client_identity.h"
#include "x11/connection/x_connection.h"

#include <fstream>

namespace quorlo {

std::optional<std::string> programOwningSelection(const XConnection& x, std::string_view selection) {
  const auto owner =
      x.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x.get(), x.atom(selection)));
  if (!owner || owner->owner == XCB_WINDOW_NONE) return std::nullopt;
  const auto process = clientOfWindow(x, owner->owner).processIdentifier;
  std::string name;
  if (process != 0) std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), name);
  return name.empty() ? "another program" : name;
}

}  // namespace quorlo
