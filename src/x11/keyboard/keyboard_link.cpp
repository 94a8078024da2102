#include "x11/keyboard/keyboard_link.h"

#include "base/log.h"
#include "x11/connection/xcb_xkb.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace quorlo {

namespace {

constexpr std::uint16_t kAllDevices = 0;
constexpr std::uint32_t kKeyMask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;

// Those that make chords of keys; a locked Caps Lock or layout does not.
constexpr std::uint8_t kOfChords =
    XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

constexpr std::string_view kWaylandDevices = "xwayland-";  // of Xwayland, by their names

std::string_view nameOf(const xcb_input_xi_device_info_t& device) {
  return {xcb_input_xi_device_info_name(&device),
          static_cast<std::size_t>(xcb_input_xi_device_info_name_length(&device))};
}

bool hasKeys(const xcb_input_xi_device_info_t& device) {
  for (auto it = xcb_input_xi_device_info_classes_iterator(&device); it.rem > 0;
       xcb_input_device_class_next(&it)) {
    if (it.data->type == XCB_INPUT_DEVICE_CLASS_TYPE_KEY) return true;
  }
  return false;
}

}  // namespace

KeyboardLink::KeyboardLink(XConnection& connection) : connection_(connection) {
  findObstacles();
}

void KeyboardLink::findObstacles() {
  KeyboardEvents::Numbers numbers;
  const auto* input = connection_.extension(xcb_input_id);
  const auto version = input == nullptr
                           ? nullptr
                           : connection_.reply(xcb_input_xi_query_version_reply,
                                               xcb_input_xi_query_version(connection_.get(), 2, 2));
  if (version && version->major_version >= 2) {
    numbers.inputOpcode = input->major_opcode;
  } else {
    obstacles_.push_back(AccessibilityObstacle::noXInput2);
  }
  const bool hasXtest = connection_.extension(xcb_test_id) != nullptr;
  if (!hasXtest) obstacles_.push_back(AccessibilityObstacle::noXtest);
  if (xkb_x11_setup_xkb_extension(connection_.get(), XKB_X11_MIN_MAJOR_XKB_VERSION,
                                  XKB_X11_MIN_MINOR_XKB_VERSION, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
                                  nullptr, nullptr, &numbers.xkbFirstEvent, nullptr) == 0) {
    obstacles_.push_back(AccessibilityObstacle::noXkb);
    return;
  }
  const auto core = xkb_x11_get_core_keyboard_device_id(connection_.get());
  masterKeyboard_ = core > 0 ? static_cast<Device>(core) : Device{3};
  numbers.masterKeyboard = masterKeyboard_;
  if (numbers.inputOpcode == 0) return;
  const auto keyboards = findKeyboards();
  numbers.xtestKeyboard = xtestKeyboard_ = keyboards.xtest;
  events_ = KeyboardEvents(numbers);
  maps_ = MapSharing(connection_, xtestKeyboard_);
  if (keyboards.ofWayland) obstacles_.insert(obstacles_.begin(), AccessibilityObstacle::waylandSession);
  if (hasXtest && xtestKeyboard_ == 0) obstacles_.push_back(AccessibilityObstacle::noXtest);
}

bool KeyboardLink::hasKeyboard() const {
  const auto keyboards = findKeyboards();
  return !keyboards.attached.empty() || keyboards.floating > 0;
}

bool KeyboardLink::isXtest(Device device) const {
  const auto reply =
      connection_.reply(xcb_input_xi_get_property_reply,
                        xcb_input_xi_get_property(connection_.get(), device, 0,
                                                  connection_.atom("XTEST Device"), XCB_ATOM_INTEGER, 0, 1));
  return reply && reply->num_items > 0;
}

KeyboardLink::Keyboards KeyboardLink::findKeyboards() const {
  Keyboards result;
  const auto reply = connection_.reply(xcb_input_xi_query_device_reply,
                                       xcb_input_xi_query_device(connection_.get(), kAllDevices));
  if (!reply) return result;
  for (auto it = xcb_input_xi_query_device_infos_iterator(reply.get()); it.rem > 0;
       xcb_input_xi_device_info_next(&it)) {
    if (nameOf(*it.data).starts_with(kWaylandDevices)) result.ofWayland = true;
    if (it.data->enabled == 0) continue;
    if (it.data->type == XCB_INPUT_DEVICE_TYPE_FLOATING_SLAVE && hasKeys(*it.data)) ++result.floating;
    if (it.data->type != XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD || it.data->attachment != masterKeyboard_) {
      continue;
    }
    if (isXtest(it.data->deviceid)) {
      result.xtest = it.data->deviceid;
    } else {
      result.attached.push_back(it.data->deviceid);
    }
  }
  return result;
}

KeyboardLink::Grab KeyboardLink::grabKeyboards() {
  const auto keyboards = findKeyboards();
  if (keyboards.attached.empty()) return Grab::nothingNew;
  // A keyboard that is plugged in later has the session's attention once it is typed on.
  const bool isFirst = grabbed_.empty();
  bool anyGrabbed = false;
  for (const auto device : keyboards.attached) {
    const bool isGrabbed = grab(device);
    anyGrabbed = anyGrabbed || isGrabbed;
    if (isGrabbed) {
      grabbed_.insert(device);
      refused_.erase(device);
      maps_.forget(device);
      copyControls(connection_, masterKeyboard_, device, ControlsShare::whileFloating);
    } else {
      grabbed_.erase(device);  // the server ended a grab there was
      if (refused_.insert(device).second) {
        logWarning("A keyboard cannot be watched: another program has grabbed it.");
      }
    }
  }
  if (!anyGrabbed) return Grab::refused;
  // Keys come to the applications from the XTEST keyboard now, which has a map of its own.
  if (isFirst) useMapOf(*grabbed_.begin());
  followLocks(locks());
  return Grab::some;
}

bool KeyboardLink::grab(Device device) const {
  const auto reply = connection_.reply(
      xcb_input_xi_grab_device_reply,
      xcb_input_xi_grab_device(connection_.get(), connection_.root(), XCB_CURRENT_TIME, XCB_NONE, device,
                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, 0, 1, &kKeyMask));
  return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

void KeyboardLink::ungrabKeyboards() {
  followMap();
  for (const auto device : grabbed_) {
    copyControls(connection_, masterKeyboard_, device, ControlsShare::whole);
    copyFeedback(connection_, masterKeyboard_, device);
    xcb_input_xi_ungrab_device(connection_.get(), XCB_CURRENT_TIME, device);
  }
  grabbed_.clear();
  maps_.forgetAll();
  connection_.flush();
}

KeyboardLink::HeldKeys KeyboardLink::heldKeys() const {
  HeldKeys held;
  for (const auto device : grabbed_) appendHeldKeys(device, held);
  return held;
}

void KeyboardLink::releaseXtestKeys() {
  HeldKeys held;
  appendHeldKeys(xtestKeyboard_, held);
  for (const auto& [device, keycode] : held) release(keycode);
}

void KeyboardLink::appendHeldKeys(Device device, HeldKeys& held) const {
  const auto state =
      connection_.reply(xcb_input_query_device_state_reply,
                        xcb_input_query_device_state(connection_.get(), static_cast<std::uint8_t>(device)));
  if (!state) return;
  for (auto it = xcb_input_query_device_state_classes_iterator(state.get()); it.rem > 0;
       xcb_input_input_state_next(&it)) {
    if (it.data->class_id != XCB_INPUT_INPUT_CLASS_KEY) continue;
    const auto* keys = reinterpret_cast<const xcb_input_key_state_t*>(it.data);
    for (unsigned keycode = 8; keycode < 256; ++keycode) {
      if ((keys->keys[keycode / 8] >> (keycode % 8) & 1U) == 0) continue;
      held.emplace_back(device, static_cast<XKeycode>(keycode));
    }
  }
}

std::vector<XKeycode> KeyboardLink::pressedKeys() const {
  std::vector<XKeycode> pressed;
  const auto reply = connection_.reply(xcb_query_keymap_reply, xcb_query_keymap(connection_.get()));
  if (!reply) return pressed;
  for (unsigned keycode = 8; keycode < 256; ++keycode) {
    if ((reply->keys[keycode / 8] >> (keycode % 8) & 1U) != 0)
      pressed.push_back(static_cast<XKeycode>(keycode));
  }
  return pressed;
}

std::vector<XKeycode> KeyboardLink::pressedModifiers() const {
  auto pressed = pressedKeys();
  if (pressed.empty()) return pressed;
  const auto keys = map();
  std::erase_if(pressed, [&](XKeycode keycode) { return !keys || !keys->isHeldModifierKey(keycode); });
  return pressed;
}

std::optional<KeyMap> KeyboardLink::map() const {
  return KeyMap::ofServer(connection_.get(), xtestKeyboard_);
}

KeyReader::Locks KeyboardLink::locks() {
  const auto state =
      connection_.reply(xcb_xkb_get_state_reply, xcb_xkb_get_state(connection_.get(), masterKeyboard_));
  if (!state) return {};
  latched_ = state->latchedMods;
  stuck_ = state->lockedMods & kOfChords;
  return {state->latchedMods, state->lockedMods, state->latchedGroup, state->lockedGroup};
}

bool KeyboardLink::noteMapChange(Device device) {
  if (grabbed_.contains(device)) maps_.forget(device);
  return device == masterKeyboard_;
}

void KeyboardLink::followControls() {
  for (const auto device : grabbed_) {
    copyControls(connection_, masterKeyboard_, device, ControlsShare::whileFloating);
  }
}

void KeyboardLink::followLocks(const KeyReader::Locks& locks) {
  for (const auto device : grabbed_) lock(device, locks);
}

void KeyboardLink::lock(Device device, const KeyReader::Locks& locks) const {
  xcb_xkb_latch_lock_state(connection_.get(), device, 0xFF, static_cast<std::uint8_t>(locks.lockedModifiers),
                           1, static_cast<std::uint8_t>(locks.lockedGroup), 0, 0, 0);
}

std::uint8_t KeyboardLink::freeStuckModifiers() {
  const auto stuck = stuck_.load();
  if (latched_ == 0 && stuck == 0) return 0;
  xcb_xkb_latch_lock_state(connection_.get(), masterKeyboard_, stuck, 0, 0, 0, 0xFF, 0, 0);
  return stuck;
}

void KeyboardLink::lockModifiers(std::uint8_t modifiers) {
  if (modifiers == 0) return;
  xcb_xkb_latch_lock_state(connection_.get(), masterKeyboard_, modifiers, modifiers, 0, 0, 0, 0, 0);
}

void KeyboardLink::setGuard(xcb_window_t window, xcb_atom_t messageType) {
  guardMessage_ = messageType;
  guardWindow_ = window;
}

void KeyboardLink::report(PressReport report, PressId press) const {
  const xcb_window_t window = guardWindow_;
  if (window == XCB_WINDOW_NONE) return;
  const auto message = pressMessage(window, guardMessage_, report, press);
  xcb_send_event(connection_.get(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                 reinterpret_cast<const char*>(&message));
}

void KeyboardLink::press(XKeycode keycode) {
  xcb_test_fake_input(connection_.get(), XCB_KEY_PRESS, keycode, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

void KeyboardLink::release(XKeycode keycode) {
  xcb_test_fake_input(connection_.get(), XCB_KEY_RELEASE, keycode, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

}  // namespace quorlo
