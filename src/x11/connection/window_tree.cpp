#include "x11/connection/window_tree.h"

namespace quorlo {

bool isInside(const XConnection& x, xcb_window_t inner, xcb_window_t outer) {
  while (inner != XCB_WINDOW_NONE && inner != x.root()) {
    if (inner == outer) return true;
    const auto tree = x.reply(xcb_query_tree_reply, xcb_query_tree(x.get(), inner));
    inner = tree ? tree->parent : xcb_window_t{XCB_WINDOW_NONE};
  }
  return false;
}

}  // namespace quorlo
