#include "x11/keyboard/keyboard_maps.h"

#include "base/log.h"
#include "x11/connection/xcb_xkb.h"

#include <sys/uio.h>
#include <xcb/xcbext.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

namespace quorlo {

namespace {

// In the order in which the request that loads a map wants them.
struct Components {
  std::string keycodes, types, compatibility, symbols;
  bool operator==(const Components&) const = default;
};

Components componentsOf(const XConnection& connection, std::uint16_t device) {
  constexpr std::uint32_t kWhich = XCB_XKB_NAME_DETAIL_KEYCODES | XCB_XKB_NAME_DETAIL_SYMBOLS |
                                   XCB_XKB_NAME_DETAIL_TYPES | XCB_XKB_NAME_DETAIL_COMPAT;
  const auto reply =
      connection.reply(xcb_xkb_get_names_reply, xcb_xkb_get_names(connection.get(), device, kWhich));
  if (!reply) return {};
  xcb_xkb_get_names_value_list_t values{};
  xcb_xkb_get_names_value_list_unpack(xcb_xkb_get_names_value_list(reply.get()), reply->nTypes,
                                      reply->indicators, reply->virtualMods, reply->groupNames, reply->nKeys,
                                      reply->nKeyAliases, reply->nRadioGroups, reply->which, &values);
  const std::array<std::uint32_t, 4> atoms{values.keycodesName, values.typesName, values.compatName,
                                           values.symbolsName};
  const auto names = connection.atomNames(atoms);
  return {names[0], names[1], names[2], names[3]};
}

// XKB protocol, XkbGetKeyboardByName; the names are missing from xcb's own function for it.
void loadMap(const XConnection& connection, std::uint16_t device, const Components& components) {
  std::vector<std::uint8_t> names;
  for (const auto* name : {"", components.keycodes.c_str(), components.types.c_str(),
                           components.compatibility.c_str(), components.symbols.c_str(), ""}) {
    const std::size_t length = std::min<std::size_t>(std::strlen(name), 255);
    names.push_back(static_cast<std::uint8_t>(length));
    names.insert(names.end(), name, name + length);
  }
  while (names.size() % 4 != 0) names.push_back(0);

  constexpr std::uint16_t kNeeded = XCB_XKB_GBN_DETAIL_TYPES | XCB_XKB_GBN_DETAIL_COMPAT_MAP |
                                    XCB_XKB_GBN_DETAIL_CLIENT_SYMBOLS | XCB_XKB_GBN_DETAIL_SERVER_SYMBOLS |
                                    XCB_XKB_GBN_DETAIL_INDICATOR_MAPS | XCB_XKB_GBN_DETAIL_KEY_NAMES |
                                    XCB_XKB_GBN_DETAIL_OTHER_NAMES;
  xcb_xkb_get_kbd_by_name_request_t request{};
  request.deviceSpec = device;
  request.need = kNeeded;
  request.want = kNeeded;
  request.load = 1;
  std::array<iovec, 4> parts{};  // xcb keeps the first two for itself
  parts[2] = {&request, sizeof request};
  parts[3] = {names.data(), names.size()};
  const xcb_protocol_request_t description{2, &xcb_xkb_id, XCB_XKB_GET_KBD_BY_NAME, 0};
  const xcb_xkb_get_kbd_by_name_cookie_t cookie{
      xcb_send_request(connection.get(), XCB_REQUEST_CHECKED, &parts[2], &description)};
  const auto reply = connection.reply(xcb_xkb_get_kbd_by_name_reply, cookie);
  if (!reply || reply->loaded == 0) {
    logWarning("The X server did not give a keyboard the map \"" + components.symbols + "\".");
  }
}

}  // namespace

bool copyKeyboardMap(const XConnection& connection, std::uint16_t from, std::uint16_t to) {
  const auto components = componentsOf(connection, from);
  if (components.symbols.empty() || components == componentsOf(connection, to)) return false;
  loadMap(connection, to, components);
  return true;
}

void copyKeysyms(const XConnection& connection, std::uint16_t from, std::uint16_t to) {
  if (componentsOf(connection, from) != componentsOf(connection, to)) return;
  const auto* setup = xcb_get_setup(connection.get());
  const auto first = setup->min_keycode;
  const auto count = static_cast<std::uint8_t>(setup->max_keycode - first + 1);
  const auto mapping = [&](std::uint16_t device) {
    return connection.reply(
        xcb_input_get_device_key_mapping_reply,
        xcb_input_get_device_key_mapping(connection.get(), static_cast<std::uint8_t>(device), first, count));
  };
  const auto wanted = mapping(from);
  const auto present = mapping(to);
  if (!wanted || !present) return;
  const auto keysyms = [](const auto& reply) {
    const auto* begin = xcb_input_get_device_key_mapping_keysyms(reply.get());
    return std::vector<xcb_keysym_t>(begin,
                                     begin + xcb_input_get_device_key_mapping_keysyms_length(reply.get()));
  };
  const auto values = keysyms(wanted);
  if (values == keysyms(present)) return;
  xcb_input_change_device_key_mapping(connection.get(), static_cast<std::uint8_t>(to), first,
                                      wanted->keysyms_per_keycode, count, values.data());
  if (const auto modifiers = connection.reply(
          xcb_input_get_device_modifier_mapping_reply,
          xcb_input_get_device_modifier_mapping(connection.get(), static_cast<std::uint8_t>(from)))) {
    xcb_input_set_device_modifier_mapping(connection.get(), static_cast<std::uint8_t>(to),
                                          modifiers->keycodes_per_modifier,
                                          xcb_input_get_device_modifier_mapping_keymaps(modifiers.get()));
  }
}

}  // namespace quorlo
