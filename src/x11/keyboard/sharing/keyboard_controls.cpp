#include "x11/keyboard/sharing/keyboard_controls.h"

#include "x11/connection/raw_request.h"
#include "x11/connection/xcb_xkb.h"

#include <xcb/xinput.h>

#include <cstddef>
#include <cstring>
#include <optional>

namespace quorlo {

namespace {

using Controls = xcb_xkb_get_controls_reply_t;

constexpr std::uint32_t kAllBooleans = 0x1FFF;
constexpr std::uint32_t kAllControls = 0xF8000000U | kAllBooleans;
constexpr std::uint32_t kActOnKeys = XCB_XKB_BOOL_CTRL_SLOW_KEYS | XCB_XKB_BOOL_CTRL_BOUNCE_KEYS |
                                     XCB_XKB_BOOL_CTRL_MOUSE_KEYS | XCB_XKB_BOOL_CTRL_MOUSE_KEYS_ACCEL;

bool isSame(const Controls& a, const Controls& b) {
  constexpr auto kFirst = offsetof(Controls, groupsWrap);
  return a.mouseKeysDfltBtn == b.mouseKeysDfltBtn &&
         std::memcmp(reinterpret_cast<const char*>(&a) + kFirst, reinterpret_cast<const char*>(&b) + kFirst,
                     sizeof(Controls) - kFirst) == 0;
}

// The keyboard feedback of the device.
std::optional<xcb_input_kbd_feedback_state_t> feedbackOf(const XConnection& connection,
                                                         std::uint16_t device) {
  const auto reply =
      connection.reply(xcb_input_get_feedback_control_reply,
                       xcb_input_get_feedback_control(connection.get(), static_cast<std::uint8_t>(device)));
  if (!reply) return std::nullopt;
  for (auto it = xcb_input_get_feedback_control_feedbacks_iterator(reply.get()); it.rem > 0;
       xcb_input_feedback_state_next(&it)) {
    if (it.data->class_id != XCB_INPUT_FEEDBACK_CLASS_KEYBOARD) continue;
    return *reinterpret_cast<const xcb_input_kbd_feedback_state_t*>(it.data);
  }
  return std::nullopt;
}

}  // namespace

void copyControls(const XConnection& connection, std::uint16_t from, std::uint16_t to, ControlsShare share) {
  auto* const c = connection.get();
  const auto askFrom = xcb_xkb_get_controls(c, from);
  const auto askTo = xcb_xkb_get_controls(c, to);
  const auto wanted = connection.reply(xcb_xkb_get_controls_reply, askFrom);
  const auto present = connection.reply(xcb_xkb_get_controls_reply, askTo);
  if (!wanted || !present) return;
  if (share == ControlsShare::whileFloating) wanted->enabledControls &= ~kActOnKeys;
  if (isSame(*wanted, *present)) return;
  xcb_xkb_set_controls(c, to, 0xFF, wanted->internalModsRealMods, 0xFF, wanted->ignoreLockModsRealMods,
                       0xFFFF, wanted->internalModsVmods, 0xFFFF, wanted->ignoreLockModsVmods,
                       wanted->mouseKeysDfltBtn, wanted->groupsWrap, wanted->accessXOption, kAllBooleans,
                       wanted->enabledControls, kAllControls, wanted->repeatDelay, wanted->repeatInterval,
                       wanted->slowKeysDelay, wanted->debounceDelay, wanted->mouseKeysDelay,
                       wanted->mouseKeysInterval, wanted->mouseKeysTimeToMax, wanted->mouseKeysMaxSpeed,
                       wanted->mouseKeysCurve, wanted->accessXTimeout, wanted->accessXTimeoutMask,
                       wanted->accessXTimeoutValues, wanted->accessXTimeoutOptionsMask,
                       wanted->accessXTimeoutOptionsValues, wanted->perKeyRepeat);
}

void copyFeedback(const XConnection& connection, std::uint16_t from, std::uint16_t to) {
  const auto wanted = feedbackOf(connection, from);
  const auto present = feedbackOf(connection, to);
  if (!wanted || !present) return;
  xcb_input_kbd_feedback_ctl_t feedback{};
  feedback.class_id = XCB_INPUT_FEEDBACK_CLASS_KEYBOARD;
  feedback.feedback_id = present->feedback_id;
  feedback.len = sizeof feedback;
  feedback.auto_repeat_mode = wanted->global_auto_repeat;
  feedback.key_click_percent = static_cast<std::int8_t>(wanted->click);
  feedback.bell_percent = static_cast<std::int8_t>(wanted->percent);
  feedback.bell_pitch = static_cast<std::int16_t>(wanted->pitch);
  feedback.bell_duration = static_cast<std::int16_t>(wanted->duration);
  xcb_input_change_feedback_control_request_t request{};
  request.device_id = static_cast<std::uint8_t>(to);
  request.feedback_id = present->feedback_id;
  request.mask = XCB_INPUT_CHANGE_FEEDBACK_CONTROL_MASK_KEY_CLICK_PERCENT |
                 XCB_INPUT_CHANGE_FEEDBACK_CONTROL_MASK_PERCENT |
                 XCB_INPUT_CHANGE_FEEDBACK_CONTROL_MASK_PITCH |
                 XCB_INPUT_CHANGE_FEEDBACK_CONTROL_MASK_DURATION;
  if (wanted->global_auto_repeat != present->global_auto_repeat) {
    request.mask |= XCB_INPUT_CHANGE_FEEDBACK_CONTROL_MASK_AUTO_REPEAT_MODE;
  }
  const auto* first = reinterpret_cast<const std::uint8_t*>(&feedback);
  sendRaw(connection, xcb_input_id, XCB_INPUT_CHANGE_FEEDBACK_CONTROL, request,
          {first, first + sizeof feedback});
}

bool hasStickyKeys(const XConnection& connection, std::uint16_t keyboard) {
  const auto controls =
      connection.reply(xcb_xkb_get_controls_reply, xcb_xkb_get_controls(connection.get(), keyboard));
  return controls && (controls->enabledControls & XCB_XKB_BOOL_CTRL_STICKY_KEYS) != 0;
}

}  // namespace quorlo
