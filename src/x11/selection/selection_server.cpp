#include "x11/selection/selection_server.h"

#include "base/log.h"
#include "x11/connection/client_identity.h"

#include <xcb/xfixes.h>
#include <algorithm>

#include <utility>

namespace quorlo {

namespace {

constexpr std::chrono::milliseconds kHandOverBudget{1000};

}  // namespace

SelectionServer::SelectionServer(XConnection& x, XEventLoop& loop, ReadBudget budget,
                                 SelectionOwner::RunProvider runProvider, IgnoredPiece pieceWasIgnored)
    : x_(x),
      loop_(loop),
      budget_(budget),
      owner_(x, loop, tracker_, std::move(runProvider)),
      reader_(x, loop),
      primary_(owner_, reader_),
      pieceWasIgnored_(std::move(pieceWasIgnored)),
      late_(
          x,
          [this](PasteTracker::PasteId paste) {
            tracker_.close(paste);
            closeFinishedPastes();
          },
          [this](PasteTracker::PasteId paste) {
            closeIgnoredPaste(paste);
            closeFinishedPastes();
          }),
      clipboard_(x.atom("CLIPBOARD")),
      clipboardManager_(x.atom("CLIPBOARD_MANAGER")) {
  if (const auto* xfixes = x.extension(xcb_xfixes_id)) {
    xfixesEvent_ = xfixes->first_event;
    x.reply(xcb_xfixes_query_version_reply, xcb_xfixes_query_version(x.get(), 5, 0));
    watch(clipboard_);
    watch(XCB_ATOM_PRIMARY);
  }
}

void SelectionServer::watch(xcb_atom_t selection) {
  xcb_xfixes_select_selection_input(x_.get(), owner_.window(), selection,
                                    XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                        XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                        XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
}

void SelectionServer::handleEvent(const xcb_generic_event_t& event) {
  const auto type = event.response_type & 0x7F;
  if (xfixesEvent_ != 0 && type == xfixesEvent_ + XCB_XFIXES_SELECTION_NOTIFY) {
    const auto& notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
    return ownerChanged(notify.selection, notify.owner, notify.selection_timestamp);
  }
  if (type == XCB_SELECTION_NOTIFY && handedOver_) {
    const auto& notify = reinterpret_cast<const xcb_selection_notify_event_t&>(event);
    if (notify.selection == clipboardManager_) return std::exchange(handedOver_, nullptr)();
  }
  late_.handleEvent(event);
  owner_.handleEvent(event);
  reader_.handleEvent(event);
  if (type == XCB_SELECTION_REQUEST || type == XCB_PROPERTY_NOTIFY) closeFinishedPastes();
}

void SelectionServer::setClipboard(Offer offer) {
  reader_.taken(clipboard_);
  // A target that hears of a new clipboard while it is pasting may drop the paste, as Chromium does.
  if (tracker_.hasPasteUnderWay() && owner_.owns(clipboard_)) {
    owner_.replaceQuietly(clipboard_, std::move(offer));
    announcementIsDue_ = true;
    return;
  }
  announcementIsDue_ = false;
  if (!takeClipboard(std::move(offer)) && !x_.lost()) {
    logWarning("WARNING: #x11sS1; Another program took the clipboard while it was being set.");
  }
}

bool SelectionServer::takeClipboard(Offer offer, xcb_timestamp_t time) {
  tracker_.contentsChanged(PasteTracker::Clock::now());
  return owner_.take(clipboard_, std::move(offer), time);
}

bool SelectionServer::setClipboardIfUnchanged(Offer offer, std::int64_t foreignChanges) {
  if (foreignChanges_ != foreignChanges) return false;
  if (tracker_.hasPasteUnderWay() && owner_.stillOwns(clipboard_)) {
    setClipboard(std::move(offer));
    return true;
  }
  const auto lastChange = owner_.owns(clipboard_) ? owner_.since(clipboard_) : lastForeignChange_;
  if (!takeClipboard(std::move(offer), lastChange)) return false;
  reader_.taken(clipboard_);
  announcementIsDue_ = false;
  return true;
}

void SelectionServer::readClipboard(SelectionReader::Reading reading) {
  reader_.read(clipboard_, budget_, std::move(reading));
}

void SelectionServer::announcePaste(const PasteTarget& target, PasteSelection selection,
                                    std::function<void()> done) {
  auto client = clientOfWindow(x_, target.window);
  if (client.processIdentifier == 0) client.processIdentifier = target.processIdentifier;
  const Offer piece = clipboardOffer();
  if (!piece || !client.isKnown()) return done();

  const PasteTracker::Target recipient{client, target.window};
  const auto announce = [this, recipient, selection, piece, done = std::move(done)] {
    tracker_.announce(recipient, selection, piece, PasteTracker::Clock::now());
    closeFinishedPastes();
    done();
  };
  inTurn(client, [this, selection, announce] {
    if (selection == PasteSelection::clipboard) return announce();
    primary_.borrow(budget_, announce);
  });
}

void SelectionServer::inTurn(const ClientIdentity& target, std::function<void()> task) {
  const auto now = XEventLoop::Clock::now();
  waiting_.push_back({target, now + kTurnPatience, std::move(task)});
  loop_.runAt(now + kTurnPatience, [this] { runWhatIsInTurn(); });
  runWhatIsInTurn();
}

void SelectionServer::runWhatIsInTurn() {
  const auto now = XEventLoop::Clock::now();
  while (!waiting_.empty()) {
    auto& first = waiting_.front();
    if (tracker_.isBusy(first.target, now) && now < first.until) return;
    const auto next = std::move(first);
    waiting_.erase(waiting_.begin());
    tracker_.closeDelivered(next.target);
    closeIgnoredPastes(next.target);
    tellOfNewContents();
    next.task();
  }
}

// Unless the target has begun to read it.
void SelectionServer::closeIgnoredPaste(PasteTracker::PasteId paste) {
  const auto before = tracker_.latePastes();
  tracker_.closeIgnored(paste);
  const auto late = std::ranges::find(before, paste, &PasteTracker::Late::paste);
  const auto after = tracker_.latePastes();
  const bool isClosed = std::ranges::find(after, paste, &PasteTracker::Late::paste) == after.end();
  if (late != before.end() && isClosed) pieceWasIgnored_(late->target.window);
}

// A target that is not busy has ignored the chords before, and reads the next piece first.
void SelectionServer::closeIgnoredPastes(const ClientIdentity& target) {
  for (const auto& late : tracker_.latePastes()) {
    if (!late.target.client.isSameProgramAs(target) || !late_.isIgnored(late.paste)) continue;
    tracker_.close(late.paste);
    pieceWasIgnored_(late.target.window);
  }
}

void SelectionServer::handOver(std::function<void()> done) {
  const auto manager =
      x_.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x_.get(), clipboardManager_));
  const Offer offer = clipboardOffer();
  if (!offer || offer->isTransient() || !manager || manager->owner == XCB_WINDOW_NONE) return done();
  handedOver_ = std::move(done);
  xcb_convert_selection(x_.get(), owner_.window(), clipboardManager_, x_.atom("SAVE_TARGETS"),
                        x_.atom("QUORLO_SAVE"), XCB_CURRENT_TIME);
  loop_.runAt(XEventLoop::Clock::now() + kHandOverBudget, [this] {
    if (handedOver_) std::exchange(handedOver_, nullptr)();
  });
}

void SelectionServer::ownerChanged(xcb_atom_t selection, xcb_window_t owner, xcb_timestamp_t since) {
  if (!owner_.ownerChanged(selection, owner, since)) return;
  if (selection == clipboard_) {
    lastForeignChange_ = since;
    ++foreignChanges_;
  }
  tracker_.closeLate(selection == XCB_ATOM_PRIMARY);
  if (selection == XCB_ATOM_PRIMARY && !owner_.owns(XCB_ATOM_PRIMARY)) primary_.ownerChanged();
  reader_.ownerChanged(selection, owner);
}

void SelectionServer::tellOfNewContents() {
  if (!announcementIsDue_ || tracker_.hasPasteUnderWay()) return;
  announcementIsDue_ = false;
  if (owner_.owns(clipboard_)) takeClipboard(clipboardOffer(), owner_.since(clipboard_));
}

void SelectionServer::closeFinishedPastes() {
  loop_.cancel(pasteTimer_);
  if (const auto next = tracker_.closeFinished(PasteTracker::Clock::now())) {
    pasteTimer_ = loop_.runAt(*next, [this] { closeFinishedPastes(); });
  }
  late_.follow(tracker_.latePastes());
  tellOfNewContents();
  runWhatIsInTurn();
  if (!tracker_.hasOpenPasteFromPrimary()) primary_.pastesAreOver();
}

}  // namespace quorlo
