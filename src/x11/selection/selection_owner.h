#pragma once

#include "x11/connection/x_connection.h"
#include "x11/connection/x_event_loop.h"
#include "x11/selection/incr_sender.h"
#include "x11/selection/paste_tracker.h"
#include "x11/selection/selection_offer.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {

// Owns selections and answers the programs that ask for them (ICCCM 2). On the loop's thread.
class SelectionOwner {
 public:
  using Offer = std::shared_ptr<SelectionOffer>;
  // Has the provider of a representation run, and calls `done` on the loop's thread when its data stands
  // in the offer, or when there will be none.
  using RunProvider =
      std::function<void(const Offer& offer, std::size_t representation, std::function<void()> done)>;

  SelectionOwner(XConnection& x, XEventLoop& loop, PasteTracker& tracker, RunProvider runProvider);

  xcb_window_t window() const { return window_; }

  // Takes the selection. When it returns the server knows; false when another program was quicker. An
  // empty offer is owned all the same: everything asked of it is refused. With the time of the selection's
  // last change it is taken only if no other program has taken it since (ICCCM 2.1).
  bool take(xcb_atom_t selection, Offer offer, xcb_timestamp_t time = XCB_CURRENT_TIME);
  // Offers other contents without telling the programs that watch the selection. Only while owned.
  void replaceQuietly(xcb_atom_t selection, Offer offer) { owned_.at(selection).offer = std::move(offer); }
  void giveUp(xcb_atom_t selection);
  bool owns(xcb_atom_t selection) const { return owned_.contains(selection); }
  Offer offer(xcb_atom_t selection) const;  // null while not owned
  // Of the last taking; XCB_CURRENT_TIME while the server has not reported it.
  xcb_timestamp_t since(xcb_atom_t selection) const { return owned_.at(selection).since; }
  // Asks the server, which knows of takers that have not been reported yet.
  bool stillOwns(xcb_atom_t selection);

  void handleEvent(const xcb_generic_event_t& event);
  // As the server reports it. True when it tells of another owner than this one.
  bool ownerChanged(xcb_atom_t selection, xcb_window_t owner, xcb_timestamp_t since);

 private:
  struct Owned {
    Offer offer;
    xcb_timestamp_t since = XCB_CURRENT_TIME;  // not known until the server has reported it
  };
  struct Conversion {
    xcb_atom_t target = XCB_ATOM_NONE;
    xcb_atom_t property = XCB_ATOM_NONE;
    bool done = false;
    bool answered = false;
  };
  // One request of another program: one conversion, or those of a MULTIPLE.
  struct Request {
    xcb_selection_request_event_t event{};
    std::vector<Conversion> conversions;
    bool multiple = false;
  };
  using RequestPtr = std::shared_ptr<Request>;

  void answer(const xcb_selection_request_event_t& event);
  void convert(const RequestPtr& request, std::size_t index);
  void convertContents(const RequestPtr& request, std::size_t index, const Offer& offer,
                       const OfferedTarget& target, std::optional<PasteTracker::PasteId> paste);
  void finish(const RequestPtr& request, std::size_t index, bool answered);
  void writeProperty(xcb_window_t requestor, xcb_atom_t property, const PropertyForm& form,
                     const std::vector<std::uint8_t>& bytes);
  void writeTargets(const Request& request, xcb_atom_t property, const SelectionOffer& offer);

  XConnection& x_;
  PasteTracker& tracker_;
  RunProvider runProvider_;
  IncrSender sender_;
  xcb_window_t window_;
  std::map<xcb_atom_t, Owned> owned_;
};

}  // namespace quorlo
