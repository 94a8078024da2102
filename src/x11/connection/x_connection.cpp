#include "x11/connection/x_connection.h"

#include <fmt/format.h>

#include <array>
#include <csignal>
#include <cstring>

namespace quorlo {

namespace {

std::string displayFromEnvironment() {
  const char* value = std::getenv("DISPLAY");
  return value != nullptr ? value : "";
}

std::string openingFailure(const std::string& display, int code) {
  if (display.empty()) {
    return "Cannot open a display: the environment variable DISPLAY is not set. Start Quorlo inside a desktop "
           "session, or set DISPLAY to the display of one, for example DISPLAY=:0.";
  }
  switch (code) {
    case XCB_CONN_CLOSED_PARSE_ERR:
      return fmt::format(
          "Cannot open display '{}': this is no name of a display. DISPLAY should look like ':0' or 'host:0.0'.",
          display);
    case XCB_CONN_CLOSED_INVALID_SCREEN:
      return fmt::format(
          "Cannot open display '{}': the X server there has no such screen. Leave the part after "
          "the dot out of DISPLAY.",
          display);
    default:
      return fmt::format(
          "Cannot open display '{}': no X server answers there, or it refuses this user. Check "
          "that DISPLAY names the display of your desktop session.",
          display);
  }
}

}  // namespace

std::vector<std::uint32_t> XProperty::cardinals() const {
  std::vector<std::uint32_t> result;
  if (format != 32 || bytes.empty()) return result;
  result.resize(bytes.size() / sizeof(std::uint32_t));
  std::memcpy(result.data(), bytes.data(), result.size() * sizeof(std::uint32_t));
  return result;
}

std::string XProperty::text() const {
  return {bytes.begin(), bytes.end()};
}

Result<std::unique_ptr<XConnection>> XConnection::open(const std::string& display) {
  const std::string name = display.empty() ? displayFromEnvironment() : display;
  // The server may end a client while it writes, which must not end the program: xcb reports it as an error.
  std::signal(SIGPIPE, SIG_IGN);
  int screenNumber = 0;
  xcb_connection_t* connection = xcb_connect(name.empty() ? nullptr : name.c_str(), &screenNumber);
  if (const int code = xcb_connection_has_error(connection); code != 0) {
    xcb_disconnect(connection);
    return Error{openingFailure(name, code)};
  }
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  while (screenNumber-- > 0 && screens.rem > 1) xcb_screen_next(&screens);
  return std::unique_ptr<XConnection>(new XConnection(connection, name, screens.data->root));
}

XConnection::XConnection(xcb_connection_t* connection, std::string displayName, xcb_window_t root)
    : connection_(connection), displayName_(std::move(displayName)), root_(root) {}

XConnection::~XConnection() {
  xcb_disconnect(connection_);
}

void XConnection::sync() const {
  reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection_));
}

const xcb_query_extension_reply_t* XConnection::extension(xcb_extension_t& id) const {
  const auto* data = xcb_get_extension_data(connection_, &id);
  return data != nullptr && data->present != 0 ? data : nullptr;
}

xcb_atom_t XConnection::atom(std::string_view name) const {
  const std::string names[] = {std::string(name)};
  return atoms(names).front();
}

std::vector<xcb_atom_t> XConnection::atoms(std::span<const std::string> names) const {
  const std::lock_guard lock(atomsMutex_);
  std::vector<std::pair<const std::string*, xcb_intern_atom_cookie_t>> asked;
  for (const auto& name : names) {
    if (atomsByName_.contains(name)) continue;
    asked.emplace_back(&name,
                       xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()));
  }
  for (const auto& [name, cookie] : asked) {
    if (const auto answer = reply(xcb_intern_atom_reply, cookie)) {
      atomsByName_[*name] = answer->atom;
      namesByAtom_[answer->atom] = *name;
    }
  }
  std::vector<xcb_atom_t> result;
  for (const auto& name : names) {
    const auto found = atomsByName_.find(name);
    result.push_back(found != atomsByName_.end() ? found->second : xcb_atom_t{XCB_ATOM_NONE});
  }
  return result;
}

std::string XConnection::atomName(xcb_atom_t atom) const {
  const std::uint32_t atoms[] = {atom};
  return atomNames(atoms).front();
}

std::vector<std::string> XConnection::atomNames(std::span<const std::uint32_t> atoms) const {
  const std::lock_guard lock(atomsMutex_);
  std::vector<std::pair<xcb_atom_t, xcb_get_atom_name_cookie_t>> asked;
  for (const auto atom : atoms) {
    if (!namesByAtom_.contains(atom)) asked.emplace_back(atom, xcb_get_atom_name(connection_, atom));
  }
  for (const auto& [atom, cookie] : asked) {
    if (const auto answer = reply(xcb_get_atom_name_reply, cookie)) {
      const std::string name(xcb_get_atom_name_name(answer.get()),
                             static_cast<std::size_t>(xcb_get_atom_name_name_length(answer.get())));
      atomsByName_[name] = atom;
      namesByAtom_[atom] = name;
    }
  }
  std::vector<std::string> result;
  for (const auto atom : atoms) {
    const auto found = namesByAtom_.find(atom);
    result.push_back(found != namesByAtom_.end() ? found->second : std::string());
  }
  return result;
}

std::optional<XProperty> XConnection::property(xcb_window_t window, xcb_atom_t name,
                                               std::size_t maxBytes) const {
  const auto words = static_cast<std::uint32_t>((maxBytes + 3) / 4);
  const auto answer = reply(xcb_get_property_reply, xcb_get_property(connection_, 0, window, name,
                                                                     XCB_GET_PROPERTY_TYPE_ANY, 0, words));
  if (!answer || answer->type == XCB_ATOM_NONE) return std::nullopt;
  const auto* first = static_cast<const std::uint8_t*>(xcb_get_property_value(answer.get()));
  const auto length = static_cast<std::size_t>(xcb_get_property_value_length(answer.get()));
  return XProperty{answer->type, answer->format, {first, first + length}, answer->bytes_after == 0};
}

void XConnection::selectStructureEvents(xcb_window_t window, bool wanted) const {
  const auto attributes =
      reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(connection_, window));
  if (!attributes) return;
  std::uint32_t mask = attributes->your_event_mask;
  if (wanted) {
    mask |= XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  } else if (mask == XCB_EVENT_MASK_STRUCTURE_NOTIFY) {
    mask = XCB_EVENT_MASK_NO_EVENT;
  }
  xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &mask);
}

xcb_window_t XConnection::createMessageWindow(std::uint32_t eventMask) const {
  const xcb_window_t window = xcb_generate_id(connection_);
  xcb_create_window(connection_, 0, window, root_, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                    XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                    std::array<std::uint32_t, 2>{1, eventMask}.data());
  return window;
}

}  // namespace quorlo
