#pragma once

#include "platform/pasteboard.h"
#include "x11/connection/x_connection.h"
#include "x11/connection/x_event_loop.h"
#include "x11/selection/selection_offer.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace quorlo {

// What another program had in a selection.
struct SelectionCopy {
  std::vector<PasteboardItem> items;
  PropertyForms forms;  // of those targets that were answered in an unusual form
};

struct ReadBudget {
  std::size_t bytes = std::size_t{64} << 20U;
  std::chrono::milliseconds time{1000};
};

// Copies what other programs offer in a selection, within a budget. All targets are asked for at once,
// each by a window of its own: some owners keep one transfer per window only. On the loop's thread.
class SelectionReader {
 public:
  using Completion = std::function<void(SelectionCopy)>;

  SelectionReader(XConnection& x, XEventLoop& loop) : x_(x), loop_(loop) {}
  ~SelectionReader();
  SelectionReader(const SelectionReader&) = delete;
  SelectionReader& operator=(const SelectionReader&) = delete;

  // Calls back once, at the latest when the time is used up, with what has come whole by then; what is
  // left out is logged. No owner gives an empty copy. Not for a selection of this connection's own.
  void read(xcb_atom_t selection, ReadBudget budget, Completion completion);

  void handleEvent(const xcb_generic_event_t& event);
  // The owner being read is gone: a read ends with what has come from it, or starts over with the new one.
  void ownerChanged(xcb_atom_t selection, xcb_window_t newOwner);

 private:
  enum class State { waiting, receiving, complete, refused, tooLarge };
  struct Fetch {
    xcb_window_t window = XCB_WINDOW_NONE;
    std::string target;
    State state = State::waiting;
    std::vector<std::uint8_t> bytes;
    PropertyForm form;
    bool isOpen() const { return state == State::waiting || state == State::receiving; }
  };
  struct Read {
    xcb_atom_t selection = XCB_ATOM_NONE;
    ReadBudget budget;
    Completion completion;
    XEventLoop::Clock::time_point deadline;
    XEventLoop::TimerId timer = 0;
    std::size_t bytesLeft = 0;
    bool askedForTargets = true;
    std::vector<Fetch> fetches;
  };
  // The window of a transfer nobody waits for any more. It stays until the owner is through with it: there
  // are owners that do not survive the window's going away.
  struct Drain {
    xcb_window_t window = XCB_WINDOW_NONE;
    bool receiving = false;
    XEventLoop::Clock::time_point lastActivity;
  };

  void ask(Read& read, std::vector<std::string> targets);
  void abandon(Read& read);
  void receive(Read& read, Fetch& fetch, bool isFirst);
  void advance(Read& read);
  void finish(Read& read);
  bool drain(xcb_window_t window, bool refused);
  void dropStalledDrains();

  XConnection& x_;
  XEventLoop& loop_;
  std::list<Read> reads_;
  std::vector<Drain> drains_;
  bool drainTimerRunning_ = false;
};

}  // namespace quorlo
