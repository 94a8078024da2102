#include "x11/keyboard/keyboard_events.h"

#include "x11/connection/xcb_xkb.h"

#include <xcb/xinput.h>

namespace quorlo {

namespace {

constexpr std::uint16_t kAllDevices = 0;
constexpr std::uint16_t kLocks = XCB_XKB_STATE_PART_MODIFIER_LOCK | XCB_XKB_STATE_PART_MODIFIER_LATCH |
                                 XCB_XKB_STATE_PART_GROUP_LOCK | XCB_XKB_STATE_PART_GROUP_LATCH;
constexpr std::uint16_t kMapParts = 0xFF;
constexpr std::uint32_t kControls = 0xF8001FFF;

}  // namespace

void KeyboardEvents::select(const XConnection& connection) const {
  const struct {
    xcb_input_event_mask_t header{kAllDevices, 1};
    std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_HIERARCHY;
  } hierarchy;
  xcb_input_xi_select_events(connection.get(), connection.root(), 1, &hierarchy.header);
  // The server does not tell that another program lets a keyboard go, only that it is typed on again.
  const struct {
    xcb_input_event_mask_t header;
    std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_DEVICE_CHANGED;
  } source{{numbers_.masterKeyboard, 1}};
  xcb_input_xi_select_events(connection.get(), connection.root(), 1, &source.header);
  // The server sends notices of maps for all keyboards, whichever is named here.
  xcb_xkb_select_events_details_t details{};
  details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
  details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
  details.affectState = kLocks;
  details.stateDetails = kLocks;
  details.affectCtrls = kControls;
  details.ctrlDetails = kControls;
  constexpr std::uint16_t kWhich = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY |
                                   XCB_XKB_EVENT_TYPE_STATE_NOTIFY | XCB_XKB_EVENT_TYPE_CONTROLS_NOTIFY;
  xcb_xkb_select_events_aux(connection.get(), numbers_.masterKeyboard, kWhich, 0, 0, kMapParts, kMapParts,
                            &details);
}

KeyboardChange KeyboardEvents::read(const xcb_generic_event_t& event) const {
  const auto type = event.response_type & 0x7FU;
  if (type == XCB_GE_GENERIC) return readInput(reinterpret_cast<const xcb_ge_generic_event_t&>(event));
  if (type == numbers_.xkbFirstEvent && type != 0) return readXkb(event);
  return {};
}

KeyboardChange KeyboardEvents::readInput(const xcb_ge_generic_event_t& event) const {
  if (event.extension != numbers_.inputOpcode) return {};
  const auto& key = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
  switch (event.event_type) {
    case XCB_INPUT_KEY_PRESS: {
      const bool isRepeat = (key.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0;
      const auto kind = isRepeat ? PhysicalKey::Kind::repeat : PhysicalKey::Kind::press;
      return KeyTyped{{kind, key.deviceid, static_cast<XKeycode>(key.detail)}, key.time};
    }
    case XCB_INPUT_KEY_RELEASE:
      return KeyTyped{{PhysicalKey::Kind::release, key.deviceid, static_cast<XKeycode>(key.detail)},
                      key.time};
    case XCB_INPUT_HIERARCHY: {
      constexpr std::uint32_t kInteresting =
          XCB_INPUT_HIERARCHY_MASK_SLAVE_ADDED | XCB_INPUT_HIERARCHY_MASK_SLAVE_REMOVED |
          XCB_INPUT_HIERARCHY_MASK_SLAVE_ATTACHED | XCB_INPUT_HIERARCHY_MASK_DEVICE_ENABLED |
          XCB_INPUT_HIERARCHY_MASK_DEVICE_DISABLED;
      const auto flags = reinterpret_cast<const xcb_input_hierarchy_event_t&>(event).flags;
      if ((flags & kInteresting) != 0) return KeyboardsChanged{};
      return {};
    }
    case XCB_INPUT_DEVICE_CHANGED: {
      const auto& changed = reinterpret_cast<const xcb_input_device_changed_event_t&>(event);
      const bool isTypedOn = changed.reason == XCB_INPUT_CHANGE_REASON_SLAVE_SWITCH &&
                             changed.sourceid != numbers_.xtestKeyboard;
      if (isTypedOn) return KeyboardsChanged{};
      return {};
    }
    default:
      return {};
  }
}

KeyboardChange KeyboardEvents::readXkb(const xcb_generic_event_t& event) const {
  switch (event.pad0) {
    case XCB_XKB_NEW_KEYBOARD_NOTIFY:
      return MapChanged{reinterpret_cast<const xcb_xkb_new_keyboard_notify_event_t&>(event).deviceID};
    case XCB_XKB_MAP_NOTIFY:
      return MapChanged{reinterpret_cast<const xcb_xkb_map_notify_event_t&>(event).deviceID};
    case XCB_XKB_STATE_NOTIFY:
      if (reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event).deviceID == numbers_.masterKeyboard)
        return LocksChanged{};
      return {};
    case XCB_XKB_CONTROLS_NOTIFY:
      if (reinterpret_cast<const xcb_xkb_controls_notify_event_t&>(event).deviceID == numbers_.masterKeyboard)
        return ControlsChanged{};
      return {};
    default:
      return {};
  }
}

}  // namespace quorlo
