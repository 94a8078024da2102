#pragma once

#include "x11/connection/x_connection.h"
#include "x11/connection/x_event_loop.h"
#include "x11/selection/borrowed_primary.h"
#include "x11/selection/late_paste_watch.h"
#include "x11/selection/paste_target.h"
#include "x11/selection/paste_tracker.h"
#include "x11/selection/selection_owner.h"
#include "x11/selection/selection_reader.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace quorlo {

// The pasteboard's side of the X server: owns CLIPBOARD while the contents are this program's, copies it
// while they are another's, and borrows PRIMARY for pastes into terminals.
//
// Everything runs on the loop's thread, except where something else is said.
class SelectionServer {
 public:
  using Offer = SelectionOwner::Offer;
  // Called with the window of a target that goes on without having read its piece.
  using IgnoredPiece = std::function<void(xcb_window_t target)>;

  SelectionServer(XConnection& x, XEventLoop& loop, ReadBudget budget,
                  SelectionOwner::RunProvider runProvider, IgnoredPiece pieceWasIgnored);

  void handleEvent(const xcb_generic_event_t& event);

  // New contents for all but the targets of open pastes. The other programs are told of them at once, or
  // when the last open paste is over.
  void setClipboard(Offer offer);
  // Null when the clipboard is not this program's.
  Offer clipboardOffer() const { return owner_.offer(clipboard_); }
  // The same, but only if no other program has taken the clipboard since so many had; false otherwise.
  bool setClipboardIfUnchanged(Offer offer, std::int64_t foreignChanges);
  void readClipboard(SelectionReader::Reading reading);

  // Copies PRIMARY, so that it can be borrowed without delay.
  void savePrimary() { primary_.save(budget_); }
  // See X11Pasteboard::pasteWillBePosted. `done` is called when the chord may be posted: at the latest
  // after kTurnPatience and the time that the owner of PRIMARY is given.
  static constexpr std::chrono::milliseconds kTurnPatience{1000};
  void announcePaste(const PasteTarget& target, PasteSelection selection, std::function<void()> done);

  // Hands the clipboard to the desktop's clipboard manager, if there is one, so that it outlives this
  // program (freedesktop.org, "ClipboardManager").
  void handOver(std::function<void()> done);

  PasteTracker& tracker() { return tracker_; }  // any thread
  // How often another program has taken the clipboard. Any thread.
  std::int64_t foreignChanges() const { return foreignChanges_; }

 private:
  void watch(xcb_atom_t selection);
  void ownerChanged(xcb_atom_t selection, xcb_window_t owner, xcb_timestamp_t since);
  bool takeClipboard(Offer offer, xcb_timestamp_t time = XCB_CURRENT_TIME);
  void tellOfNewContents();
  void closeIgnoredPaste(PasteTracker::PasteId paste);
  void closeIgnoredPastes(const ClientIdentity& target);
  void closeFinishedPastes();
  // Runs the task once no earlier paste into the program is under way, or the patience is at its end.
  void inTurn(const ClientIdentity& target, std::function<void()> task);
  void runWhatIsInTurn();

  XConnection& x_;
  XEventLoop& loop_;
  ReadBudget budget_;
  PasteTracker tracker_;
  SelectionOwner owner_;
  SelectionReader reader_;
  BorrowedPrimary primary_;
  IgnoredPiece pieceWasIgnored_;
  LatePasteWatch late_;
  xcb_atom_t clipboard_;
  xcb_atom_t clipboardManager_;
  std::uint8_t xfixesEvent_ = 0;
  std::atomic<std::int64_t> foreignChanges_ = 0;
  xcb_timestamp_t lastForeignChange_ = XCB_CURRENT_TIME;  // of the clipboard; unknown before the first
  bool announcementIsDue_ = false;
  XEventLoop::TimerId pasteTimer_ = 0;
  std::function<void()> handedOver_;

  struct Waiting {
    ClientIdentity target;
    XEventLoop::Clock::time_point until;
    std::function<void()> task;
  };
  std::vector<Waiting> waiting_;
};

}  // namespace quorlo
