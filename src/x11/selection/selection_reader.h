#pragma once

#include "platform/pasteboard.h"
#include "x11/connection/x_connection.h"
#include "x11/connection/x_event_loop.h"
#include "x11/selection/abandoned_transfers.h"
#include "x11/selection/selection_offer.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// What another program had in a selection.
struct SelectionCopy {
  std::vector<PasteboardItem> items;
  std::vector<PasteboardLoss> losses;
  PropertyForms forms;  // of those targets that were answered in an unusual form
};

// What a copy may cost. Encoding a picture of two large screens takes an owner five seconds.
struct ReadBudget {
  std::size_t bytes = std::size_t{256} << 20U;
  std::chrono::milliseconds silence{30'000};  // without an answer or a part of one
};

// Copies what other programs offer in a selection, within a budget. All targets are asked for at once,
// each by a window of its own: some owners keep one transfer per window only. On the loop's thread.
//
// Requests that are in an owner's queue are answered even when the owner loses the selection afterwards. So
// the selection may be taken while the copy is still under way.
class SelectionReader {
 public:
  struct Reading {
    // The selection may be taken without harm to the copy: the requests are in the owner's queue, or
    // kOwnersTime is over. Called once, before `completed`.
    std::function<void()> mayBeTaken;
    std::function<void(SelectionCopy)> completed;  // once
  };
  static constexpr std::chrono::milliseconds kOwnersTime{200};

  SelectionReader(XConnection& x, XEventLoop& loop) : x_(x), loop_(loop), abandoned_(x, loop) {}
  ~SelectionReader();
  SelectionReader(const SelectionReader&) = delete;
  SelectionReader& operator=(const SelectionReader&) = delete;

  // No owner gives an empty copy. Not for a selection of this connection's own.
  void read(xcb_atom_t selection, ReadBudget budget, Reading reading);

  void handleEvent(const xcb_generic_event_t& event);
  // Another program has taken the selection, or its owner is gone. A read whose selection may not be taken
  // yet starts over with the new owner.
  void ownerChanged(xcb_atom_t selection, xcb_window_t newOwner);
  // This connection has taken the selection: nothing more can be asked of its former owner.
  void taken(xcb_atom_t selection);

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
    Reading reading;
    xcb_window_t owner = XCB_WINDOW_NONE;
    XEventLoop::Clock::time_point lastProgress;
    XEventLoop::TimerId silenceTimer = 0;
    XEventLoop::TimerId guessTimer = 0;
    XEventLoop::TimerId ownersTimeTimer = 0;
    std::size_t bytesLeft = 0;
    bool mayBeTaken = false;
    bool isTaken = false;
    bool ownerEnded = false;
    bool knowsWanted = false;  // the owner has answered for its targets
    std::vector<std::string> offered;
    std::vector<std::string> wanted;  // of what is offered; empty for an owner that does not tell
    std::vector<Fetch> fetches;       // the first is for the targets
    Fetch* find(xcb_window_t window);
    bool hasAskedFor(std::string_view target) const;
    bool isContent(std::string_view target) const;
    std::ptrdiff_t rankOf(std::string_view target) const;
  };
  void start(Read& read);
  void ask(Read& read, const std::vector<std::string>& targets);
  void guess(Read& read);
  void letBeTaken(Read& read);
  void abandon(Read& read);
  void receive(Read& read, Fetch& fetch, bool isFirst);
  void advance(Read& read);
  void learnTargets(Read& read);
  void askForAnotherPicture(Read& read);
  void finish(Read& read);
  std::vector<PasteboardLoss> lossesOf(const Read& read) const;
  void logLosses(const Read& read, const std::vector<PasteboardLoss>& losses) const;
  void watchSilence(Read& read);
  void watchOwner(Read& read, xcb_window_t owner);
  void ownerEnded(xcb_window_t owner);

  XConnection& x_;
  XEventLoop& loop_;
  AbandonedTransfers abandoned_;
  std::list<Read> reads_;
};

}  // namespace quorlo
