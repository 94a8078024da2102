#include "x11/x11_hot_key_center.h"

#include "base/localized.h"
#include "base/log.h"
#include "platform/keyboard_layout.h"
#include "text/utf.h"
#include "x11/keyboard_service.h"
#include "x11/xcb_xkb.h"

#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <set>
#include <string_view>
#include <utility>

namespace quorlo {

namespace {

constexpr std::uint32_t kKeyMask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;

Error withText(std::u16string message, const std::u16string& shortcut) {
  const auto place = message.find(u"%@");
  if (place != std::u16string::npos) message.replace(place, 2, shortcut);
  return Error{toUtf8(message)};
}

void selectMapChanges(const XConnection& x, std::uint16_t keyboard) {
  xcb_xkb_select_events_details_t details{};
  details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
  details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
  constexpr std::uint16_t kWhich = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
  constexpr std::uint16_t kMap = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
  xcb_xkb_select_events_aux(x.get(), keyboard, kWhich, 0, 0, kMap, kMap, &details);
  x.flush();
}

}  // namespace

Result<std::unique_ptr<X11HotKeyCenter>> X11HotKeyCenter::connect(Options options, MainQueue& queue,
                                                                  KeyboardService& keyboard,
                                                                  const KeyboardLayout& layout) {
  auto x = XConnection::open(options.display);
  if (!x) return x.error();
  return std::unique_ptr<X11HotKeyCenter>(
      new X11HotKeyCenter(std::move(x).value(), std::move(options), queue, keyboard, layout));
}

X11HotKeyCenter::X11HotKeyCenter(std::unique_ptr<XConnection> x, Options options, MainQueue& queue,
                                 KeyboardService& keyboard, const KeyboardLayout& layout)
    : x_(std::move(x)), queue_(queue), keyboard_(keyboard), layout_(layout), loop_(*x_, "hot keys") {
  if (const auto* input = x_->extension(xcb_input_id)) {
    const auto version =
        x_->reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(x_->get(), 2, 2));
    if (version && version->major_version >= 2) inputOpcode_ = input->major_opcode;
  }
  xkb_x11_setup_xkb_extension(x_->get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                              XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &xkbFirstEvent_,
                              nullptr);
  if (const auto core = xkb_x11_get_core_keyboard_device_id(x_->get()); core > 0) {
    masterKeyboard_ = static_cast<std::uint16_t>(core);
    selectMapChanges(*x_, masterKeyboard_);
  }
  loop_.start([this](const xcb_generic_event_t& event) { handleEvent(event); },
              [lost = std::move(options.connectionLost)] {
                if (lost) lost();
              });
}

X11HotKeyCenter::~X11HotKeyCenter() {
  loop_.stop();
}

Result<Subscription> X11HotKeyCenter::registerHotKey(Shortcut shortcut, std::function<void()> pressed) {
  shortcut = normalized(shortcut);
  const auto failure = [&](std::u16string_view message) {
    return withText(localized(message), shortcutText(shortcut, layout_));
  };
  if (!map_) {
    if (auto map = KeyMap::ofServer(x_->get(), masterKeyboard_)) useMap(std::move(*map));
  }
  const auto key = keyFor(shortcut);
  if (inputOpcode_ == 0 || key.keycode == 0) return failure(u"There is no key on this keyboard for %@.");
  for (const auto& [other, hotKey] : hotKeys_) {
    if (other == shortcut || hotKey.key == key) return failure(u"%@ is already in use in Quorlo.");
  }
  if (suspensions_ == 0 && !grab(key)) return failure(u"%@ is in use by another program.");
  hotKeys_.emplace(shortcut, HotKey{suspensions_ == 0 ? key : Key{}, std::move(pressed)});
  tellTap();
  return Subscription(life_.guard([this, shortcut] { unregister(shortcut); }));
}

void X11HotKeyCenter::unregister(Shortcut shortcut) {
  const auto found = hotKeys_.find(shortcut);
  ungrab(found->second.key);
  hotKeys_.erase(found);
  tellTap();
}

Subscription X11HotKeyCenter::suspend() {
  if (suspensions_++ == 0) {
    ungrabAll();
    tellTap();
  }
  return Subscription(life_.guard([this] {
    if (--suspensions_ > 0) return;
    grabAll();
    tellTap();
  }));
}

void X11HotKeyCenter::handleEvent(const xcb_generic_event_t& event) {
  const auto type = event.response_type & 0x7FU;
  if (type == XCB_GE_GENERIC) {
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension != inputOpcode_ || generic.event_type != XCB_INPUT_KEY_PRESS) return;
    const auto& press = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
    if ((press.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0) return;
    // The grab lasts until the key is up; only the combination itself calls.
    const Key key{static_cast<XKeycode>(press.detail), stateOfFlags(flagsOfState(press.mods.effective))};
    queue_.run(life_.guard([this, key] { keyPressed(key); }));
  } else if (type == xkbFirstEvent_ && xkbFirstEvent_ != 0) {
    if (event.pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || event.pad0 == XCB_XKB_MAP_NOTIFY) {
      queue_.run(life_.guard([this] { keyboardChanged(); }));
    }
  }
}

void X11HotKeyCenter::keyPressed(Key key) {
  for (const auto& [shortcut, hotKey] : hotKeys_) {
    if (hotKey.key != key) continue;
    const auto pressed = hotKey.pressed;  // may end the registration
    return pressed();
  }
}

void X11HotKeyCenter::keyboardChanged() {
  if (!map_) return;
  auto map = KeyMap::ofServer(x_->get(), masterKeyboard_);
  if (!map) return;
  ungrabAll();  // as they were grabbed: with the modifiers of before
  useMap(std::move(*map));
  if (suspensions_ == 0) grabAll();
}

void X11HotKeyCenter::useMap(KeyMap map) {
  map_ = std::move(map);
  lockModifiers_ = XCB_MOD_MASK_LOCK;
  const auto reply = x_->reply(xcb_get_modifier_mapping_reply, xcb_get_modifier_mapping(x_->get()));
  if (!reply) return;
  const auto* keycodes = xcb_get_modifier_mapping_keycodes(reply.get());
  for (unsigned modifier = 3; modifier < 8; ++modifier) {  // Mod1 to Mod5
    for (unsigned i = 0; i < reply->keycodes_per_modifier; ++i) {
      const auto keysym = map_->keysym(keycodes[modifier * reply->keycodes_per_modifier + i], 0);
      if (keysym == XKB_KEY_Num_Lock || keysym == XKB_KEY_Scroll_Lock) lockModifiers_ |= 1U << modifier;
    }
  }
  lockModifiers_ &= ~stateOfFlags(kShortcutModifiers);
}

X11HotKeyCenter::Key X11HotKeyCenter::keyFor(Shortcut shortcut) const {
  if (!map_) return {};
  return {map_->keyForCode(shortcut.keyCode, 0), stateOfFlags(shortcut.modifierFlags)};
}

bool X11HotKeyCenter::grab(Key key) const {
  // Servers keep the grabs of the old and of the new protocol apart: neither refuses the other.
  if (coreGrabIsTaken(key)) return false;
  const auto modifiers = withLocks(key.modifiers);
  const auto reply =
      x_->reply(xcb_input_xi_passive_grab_device_reply,
                xcb_input_xi_passive_grab_device(
                    x_->get(), XCB_CURRENT_TIME, x_->root(), XCB_CURSOR_NONE, key.keycode, masterKeyboard_,
                    static_cast<std::uint16_t>(modifiers.size()), 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
                    XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER,
                    &kKeyMask, modifiers.data()));
  if (reply && reply->num_modifiers == 0) return true;  // it lists those that were refused
  ungrab(key);
  return false;
}

void X11HotKeyCenter::ungrab(Key key) const {
  if (key.keycode == 0) return;
  const auto modifiers = withLocks(key.modifiers);
  xcb_input_xi_passive_ungrab_device(x_->get(), x_->root(), key.keycode, masterKeyboard_,
                                     static_cast<std::uint16_t>(modifiers.size()),
                                     XCB_INPUT_GRAB_TYPE_KEYCODE, modifiers.data());
  x_->flush();
}

bool X11HotKeyCenter::coreGrabIsTaken(Key key) const {
  const auto request =
      xcb_grab_key_checked(x_->get(), 0, x_->root(), static_cast<std::uint16_t>(key.modifiers), key.keycode,
                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const XReply<xcb_generic_error_t> refused(xcb_request_check(x_->get(), request));
  if (!refused) {
    xcb_ungrab_key(x_->get(), key.keycode, x_->root(), static_cast<std::uint16_t>(key.modifiers));
  }
  return refused != nullptr;
}

// Caps Lock and Num Lock are modifiers to the server, and a grab is for exactly its modifiers.
std::vector<std::uint32_t> X11HotKeyCenter::withLocks(std::uint32_t modifiers) const {
  std::vector<std::uint32_t> result;
  for (std::uint32_t locks = lockModifiers_;; locks = (locks - 1) & lockModifiers_) {
    result.push_back(modifiers | locks);
    if (locks == 0) return result;
  }
}

void X11HotKeyCenter::grabAll() {
  for (auto& [shortcut, hotKey] : hotKeys_) {
    const auto key = keyFor(shortcut);
    if (key.keycode != 0 && grab(key)) {
      hotKey.key = key;
    } else {
      logWarning("WARNING: #x11hK1; A hot key could not be taken again: " +
                 toUtf8(shortcutText(shortcut, layout_)));
    }
  }
}

void X11HotKeyCenter::ungrabAll() {
  for (auto& [shortcut, hotKey] : hotKeys_) ungrab(std::exchange(hotKey.key, Key{}));
}

void X11HotKeyCenter::tellTap() const {
  std::set<Shortcut> combinations;
  for (const auto& [shortcut, hotKey] : hotKeys_) {
    if (hotKey.key.keycode != 0) combinations.insert(shortcut);
  }
  keyboard_.setHotKeys(std::move(combinations));
}

}  // namespace quorlo
