#pragma once

#include "base/result.h"

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }
};
// A reply, an event or an error of xcb, which hands them over malloc'ed.
template <class T>
using XReply = std::unique_ptr<T, FreeDeleter>;

// The value of a window's property.
struct XProperty {
  xcb_atom_t type = XCB_ATOM_NONE;
  std::uint8_t format = 0;  // bits per element: 8, 16 or 32
  std::vector<std::uint8_t> bytes;
  bool complete = true;  // false when the value is longer than what was asked for

  std::vector<std::uint32_t> cardinals() const;  // empty unless the format is 32
  std::string text() const;
};

// A connection to an X server. Requests may be made from any thread; events are read by one thread only
// (see XEventLoop). A server that goes away makes requests fail and `lost` true, nothing else.
class XConnection {
 public:
  // `display` as in the environment variable DISPLAY; empty for the variable itself.
  static Result<std::unique_ptr<XConnection>> open(const std::string& display);
  ~XConnection();
  XConnection(const XConnection&) = delete;
  XConnection& operator=(const XConnection&) = delete;

  xcb_connection_t* get() const { return connection_; }
  const std::string& displayName() const { return displayName_; }
  xcb_window_t root() const { return root_; }
  bool lost() const { return xcb_connection_has_error(connection_) != 0; }
  void flush() const { xcb_flush(connection_); }
  // Waits until the server has done everything asked so far.
  void sync() const;

  // Null when the server lacks the extension.
  const xcb_query_extension_reply_t* extension(xcb_extension_t& id) const;

  // The reply to a request, or null after an error:
  // `x.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x.get()))`.
  template <class T, class Cookie>
  XReply<T> reply(T* (*fetch)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie) const {
    xcb_generic_error_t* error = nullptr;
    XReply<T> result(fetch(connection_, cookie, &error));
    std::free(error);
    return result;
  }

  // Atoms are remembered: a round trip only for names and atoms not seen before.
  xcb_atom_t atom(std::string_view name) const;
  std::vector<xcb_atom_t> atoms(std::span<const std::string> names) const;
  std::string atomName(xcb_atom_t atom) const;
  std::vector<std::string> atomNames(std::span<const std::uint32_t> atoms) const;

  // Absent when the window or the property does not exist. One round trip.
  std::optional<XProperty> property(xcb_window_t window, xcb_atom_t name,
                                    std::size_t maxBytes = std::size_t{1} << 20U) const;

  // Selects the structure events of another program's window, or stops selecting them, and leaves what else
  // this connection has selected of it. One round trip.
  void selectStructureEvents(xcb_window_t window, bool wanted) const;

  // An unmapped input-only window of this connection's own, for messages and properties.
  xcb_window_t createMessageWindow(std::uint32_t eventMask) const;

 private:
  XConnection(xcb_connection_t* connection, std::string displayName, xcb_window_t root);

  xcb_connection_t* connection_;
  std::string displayName_;
  xcb_window_t root_;
  mutable std::mutex atomsMutex_;
  mutable std::map<std::string, xcb_atom_t, std::less<>> atomsByName_;
  mutable std::map<xcb_atom_t, std::string> namesByAtom_;
};

}  // namespace quorlo
