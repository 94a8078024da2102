#include "x11/guard/server_keyboards.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

namespace quorlo {

void ServerKeyboards::find() {
  static constexpr char kName[] = "XTEST Device";
  const Owned<xcb_intern_atom_reply_t> atom(
      xcb_intern_atom_reply(connection_, xcb_intern_atom(connection_, 0, sizeof kName - 1, kName), nullptr));
  const Owned<xcb_input_xi_query_device_reply_t> devices(
      xcb_input_xi_query_device_reply(connection_, xcb_input_xi_query_device(connection_, 0), nullptr));
  if (!atom || !devices) return;
  xtest_.clear();
  physical_.clear();
  for (auto it = xcb_input_xi_query_device_infos_iterator(devices.get()); it.rem > 0;
       xcb_input_xi_device_info_next(&it)) {
    const auto type = it.data->type;
    if (type != XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD && type != XCB_INPUT_DEVICE_TYPE_FLOATING_SLAVE)
      continue;
    const Owned<xcb_input_xi_get_property_reply_t> property(xcb_input_xi_get_property_reply(
        connection_,
        xcb_input_xi_get_property(connection_, it.data->deviceid, 0, atom->atom, XCB_ATOM_INTEGER, 0, 1),
        nullptr));
    (property && property->num_items > 0 ? xtest_ : physical_).insert(it.data->deviceid);
  }
}

std::vector<std::uint8_t> ServerKeyboards::downOn(std::uint16_t device) const {
  std::vector<std::uint8_t> down;
  const Owned<xcb_input_query_device_state_reply_t> state(xcb_input_query_device_state_reply(
      connection_, xcb_input_query_device_state(connection_, static_cast<std::uint8_t>(device)), nullptr));
  if (!state) return down;
  for (auto it = xcb_input_query_device_state_classes_iterator(state.get()); it.rem > 0;
       xcb_input_input_state_next(&it)) {
    if (it.data->class_id != XCB_INPUT_INPUT_CLASS_KEY) continue;
    const auto* keys = reinterpret_cast<const xcb_input_key_state_t*>(it.data);
    for (unsigned keycode = 8; keycode < 256; ++keycode) {
      if ((keys->keys[keycode / 8] >> (keycode % 8) & 1U) != 0)
        down.push_back(static_cast<std::uint8_t>(keycode));
    }
  }
  return down;
}

std::set<std::uint8_t> ServerKeyboards::downOnXtest() const {
  std::set<std::uint8_t> down;
  for (const auto device : xtest_) {
    for (const auto keycode : downOn(device)) down.insert(keycode);
  }
  return down;
}

std::set<std::uint8_t> ServerKeyboards::heldModifierKeys() const {
  const Owned<xcb_get_modifier_mapping_reply_t> reply(
      xcb_get_modifier_mapping_reply(connection_, xcb_get_modifier_mapping(connection_), nullptr));
  std::set<std::uint8_t> keys;
  if (!reply) return keys;
  const auto* codes = xcb_get_modifier_mapping_keycodes(reply.get());
  for (int modifier = XCB_MAP_INDEX_SHIFT; modifier <= XCB_MAP_INDEX_5; ++modifier) {
    // Num Lock is the second by convention.
    if (modifier == XCB_MAP_INDEX_LOCK || modifier == XCB_MAP_INDEX_2) continue;
    for (int i = 0; i < reply->keycodes_per_modifier; ++i) {
      const auto keycode = codes[modifier * reply->keycodes_per_modifier + i];
      if (keycode != 0) keys.insert(keycode);
    }
  }
  return keys;
}

void ServerKeyboards::press(std::uint8_t keycode) const {
  xcb_test_fake_input(connection_, XCB_KEY_PRESS, keycode, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

void ServerKeyboards::release(std::uint8_t keycode) const {
  xcb_test_fake_input(connection_, XCB_KEY_RELEASE, keycode, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

}  // namespace quorlo
