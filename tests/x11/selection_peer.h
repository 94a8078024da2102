#pragma once

#include "platform/pasteboard.h"
#include "x11/connection/x_connection.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

// Another application as far as selections go, with a connection of its own: takes a selection and answers
// for it well or badly, and reads what others offer. Answers only within its own calls. Like the toolkits it
// refuses what it is asked for after another program has taken its selection.
class SelectionPeer {
 public:
  // What it does when asked for one target.
  struct Answer {
    enum class Manner { whole, inPieces, refuse, silence, dieAfterFirstPiece };
    PasteboardData data = {};
    Manner manner = Manner::whole;
    std::string type = {};  // of the property; the target's name when empty
    std::uint8_t format = 8;
  };
  using Answers = std::map<std::string, Answer>;

  explicit SelectionPeer(const std::string& display);

  xcb_window_t window() const { return window_; }
  void own(const std::string& selection, Answers answers);
  void disconnect() { x_.reset(); }
  // Handles what has arrived.
  void step();
  // The targets it was asked for as an owner, TARGETS included.
  const std::vector<std::string>& asked() const { return asked_; }

  // Answers pings from now on, as applications do, and becomes the active window.
  void becomeActive();
  bool hasAnsweredPing() const { return hasAnsweredPing_; }
  // Presses and releases a key, as the user would.
  void tapKey(xcb_keysym_t keysym);

  // Absent when refused. `meanwhile` is called until the answer is there; std::runtime_error when none comes.
  std::optional<PasteboardData> read(const std::string& selection, const std::string& target,
                                     const std::function<void()>& meanwhile = {});
  std::optional<std::string> readText(const std::string& selection, const std::string& target,
                                      const std::function<void()>& meanwhile = {});
  std::vector<std::string> readTargets(const std::string& selection);
  // Several targets by one MULTIPLE; of each whether it was answered, in order.
  std::vector<bool> readMultiple(const std::string& selection, const std::vector<std::string>& targets);

  std::string ownerOf(const std::string& selection) const;  // "nobody", "this" or "other"

 private:
  void handle(const xcb_generic_event_t& event);
  void answer(const xcb_selection_request_event_t& request);
  void sendPiece(xcb_window_t requestor, xcb_atom_t property);

  struct Sending {
    Answer answer;
    xcb_atom_t type = XCB_ATOM_NONE;
    std::size_t sent = 0;
  };

  std::unique_ptr<XConnection> x_;
  xcb_window_t window_;
  Answers answers_;
  bool isOwner_ = false;
  bool hasAnsweredPing_ = false;
  std::vector<std::string> asked_;
  std::map<std::pair<xcb_window_t, xcb_atom_t>, Sending> sending_;

  std::optional<xcb_selection_notify_event_t> notified_;
  int newValues_ = 0;
};

}  // namespace quorlo
