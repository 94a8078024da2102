#include "x11/keyboard/sharing/keyboard_maps.h"

#include "base/log.h"
#include "x11/connection/raw_request.h"
#include "x11/connection/xcb_xkb.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {

namespace {

using Components = KeyboardComponents;

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
  const xcb_xkb_get_kbd_by_name_cookie_t cookie{
      sendRaw(connection, xcb_xkb_id, XCB_XKB_GET_KBD_BY_NAME, request, std::move(names), RawReply::awaited)};
  const auto reply = connection.reply(xcb_xkb_get_kbd_by_name_reply, cookie);
  if (!reply || reply->loaded == 0) {
    logWarning("The X server did not give a keyboard the map \"" + components.symbols + "\".");
  }
}

}  // namespace

KeyboardMap readKeyboardMap(const XConnection& connection, std::uint16_t device) {
  return {componentsOf(connection, device), readKeyDefinitions(connection, device)};
}

void giveMap(const XConnection& connection, std::uint16_t device, const KeyboardMap& wanted) {
  if (!wanted.components.symbols.empty() && componentsOf(connection, device) != wanted.components) {
    loadMap(connection, device, wanted.components);
  }
  const auto present = readKeyDefinitions(connection, device);
  if (!present || !wanted.keys || !present->hasKeysOf(*wanted.keys)) return;
  writeKeyDefinitions(connection, device, *wanted.keys, *present, differingKeys(*present, *wanted.keys));
}

void giveMapChange(const XConnection& connection, std::uint16_t device, const KeyboardMap& before,
                   const KeyboardMap& after) {
  const bool isSingleKeys = before.components == after.components && before.keys && after.keys &&
                            before.keys->hasKeysOf(*after.keys);
  if (!isSingleKeys) {
    giveMap(connection, device, after);
    return;
  }
  auto present = readKeyDefinitions(connection, device);
  if (!present || !present->hasKeysOf(*after.keys)) return;
  // What the keyboard has differently of its own stays.
  auto wanted = *after.keys;
  std::size_t next = 0;
  for (const auto& range : differingKeys(*before.keys, *after.keys)) {
    for (; next < range.begin; ++next) wanted.keys[next] = present->keys[next];
    next = range.end;
  }
  for (; next < wanted.keys.size(); ++next) wanted.keys[next] = present->keys[next];
  writeKeyDefinitions(connection, device, wanted, *present, differingKeys(*present, wanted));
}

}  // namespace quorlo
