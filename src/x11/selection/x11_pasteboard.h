#pragma once

#include "base/result.h"
#include "platform/main_queue.h"
#include "platform/pasteboard.h"
#include "x11/connection/x_connection.h"
#include "x11/connection/x_event_loop.h"
#include "x11/selection/paste_target.h"
#include "x11/selection/paste_tracker.h"
#include "x11/selection/selection_offer.h"
#include "x11/selection/selection_server.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace quorlo {

// The pasteboard as X11 has it: the selection CLIPBOARD. Programs that ask for its contents are answered
// by a thread of its own, however busy the main thread is; only lazily provided types wait for that.
//
// Text is served as given: Linux applications expect line feeds.
class X11Pasteboard : public Pasteboard {
 public:
  struct Options {
    // Whether the application in front pastes from PRIMARY, which is then saved by `read` as well. Main
    // thread.
    std::function<bool()> pastesFromPrimary;
    std::function<void()> connectionLost;  // once, on a thread of the pasteboard's
    ReadBudget readBudget = {};
    // A target that is not busy goes on without having read its piece. On a thread of the pasteboard's.
    std::function<void(xcb_window_t target)> pieceWasIgnored = {};
  };

  static Result<std::unique_ptr<X11Pasteboard>> connect(const std::string& display, MainQueue& queue,
                                                        Options options);
  // Contents that are not transient go to the desktop's clipboard manager, if there is one; types that
  // would have to be provided now are refused.
  ~X11Pasteboard() override;

  void setContents(PasteboardContents contents) override;
  bool setContentsIfUnchanged(PasteboardContents contents, std::int64_t changeCount) override;
  void read(Reading reading) override;
  std::int64_t changeCount() const override;

  // To be called on the main thread before a paste chord is posted. From then on the target is served
  // the contents as they are now until it has read them, whatever is set meanwhile (see PasteTracker). Waits
  // until the paste before into the same program is over (60 ms after its last read), 1 s at most: when
  // two are under way at once, nothing tells which of them a read is for. With clipboardAndPrimary the
  // contents can be read from PRIMARY too when the call returns.
  void pasteWillBePosted(const PasteTarget& target, PasteSelection selection);

  PasteTracker& pasteTracker() { return server_.tracker(); }

 private:
  class OwnContents;

  X11Pasteboard(std::unique_ptr<XConnection> x, MainQueue& queue, Options options);
  void runProvider(const SelectionServer::Offer& offer, std::size_t representation,
                   std::function<void()> done);
  void provideAll();
  SelectionServer::Offer adopt(const PasteboardContents& contents);
  void warnOfLateServer() const;
  // What another program had, and what this program has set.
  PasteboardCopy copyOf(SelectionCopy& foreign);
  PasteboardCopy copyOf(const std::shared_ptr<OwnContents>& own);

  std::unique_ptr<XConnection> x_;
  MainQueue& queue_;
  Options options_;
  XEventLoop loop_;
  SelectionServer server_;

  bool providersAreGone_ = false;  // pasteboard's thread: at the end of the program

  // Main thread.
  std::shared_ptr<OwnContents> own_;  // what was set last
  PropertyForms forms_;               // how other owners answered for types that may be restored
  std::int64_t ownChanges_ = 0;
  std::shared_ptr<char> alive_ = std::make_shared<char>();
};

}  // namespace quorlo
