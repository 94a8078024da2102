#include "x11/connection/client_identity.h"

#include "x11/connection/x_connection.h"

#include <xcb/res.h>

namespace quorlo {

ClientIdentity clientOfWindow(const XConnection& x, xcb_window_t window) {
  if (window == XCB_WINDOW_NONE) return {};
  // Every client has the same mask; its own bits number the client's resources.
  ClientIdentity result{window & ~xcb_get_setup(x.get())->resource_id_mask, 0};
  if (x.extension(xcb_res_id) == nullptr) return result;
  const xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
  const auto answer = x.reply(xcb_res_query_client_ids_reply, xcb_res_query_client_ids(x.get(), 1, &spec));
  if (!answer) return result;
  for (auto ids = xcb_res_query_client_ids_ids_iterator(answer.get()); ids.rem > 0;
       xcb_res_client_id_value_next(&ids)) {
    if ((ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) == 0) continue;
    if (xcb_res_client_id_value_value_length(ids.data) > 0) {
      result.processIdentifier = *xcb_res_client_id_value_value(ids.data);
    }
  }
  return result;
}

}  // namespace quorlo
