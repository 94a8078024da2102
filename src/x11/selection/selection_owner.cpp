#include "x11/selection/selection_owner.h"

#include "x11/connection/client_identity.h"

#include <array>
#include <utility>

namespace quorlo {

SelectionOwner::SelectionOwner(XConnection& x, XEventLoop& loop, PasteTracker& tracker,
                               RunProvider runProvider)
    : x_(x),
      tracker_(tracker),
      runProvider_(std::move(runProvider)),
      sender_(x, loop),
      window_(x.createMessageWindow(XCB_EVENT_MASK_PROPERTY_CHANGE)) {}

bool SelectionOwner::take(xcb_atom_t selection, Offer offer, xcb_timestamp_t time) {
  // Without a time the server's own counts: the latest there is, so that no earlier owner can refuse it.
  xcb_set_selection_owner(x_.get(), window_, selection, time);
  owned_.insert_or_assign(selection, Owned{std::move(offer), time});
  return stillOwns(selection);
}

// A notice of another owner may be older than our last taking of the selection: the server knows.
bool SelectionOwner::stillOwns(xcb_atom_t selection) {
  if (!owned_.contains(selection)) return false;
  const auto owner = x_.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x_.get(), selection));
  if (owner && owner->owner == window_) return true;
  owned_.erase(selection);
  return false;
}

void SelectionOwner::giveUp(xcb_atom_t selection) {
  if (owned_.erase(selection) == 0) return;
  xcb_set_selection_owner(x_.get(), XCB_WINDOW_NONE, selection, XCB_CURRENT_TIME);
}

SelectionOwner::Offer SelectionOwner::offer(xcb_atom_t selection) const {
  const auto found = owned_.find(selection);
  return found != owned_.end() ? found->second.offer : nullptr;
}

void SelectionOwner::handleEvent(const xcb_generic_event_t& event) {
  sender_.handleEvent(event);
  switch (event.response_type & 0x7F) {
    case XCB_SELECTION_REQUEST:
      answer(reinterpret_cast<const xcb_selection_request_event_t&>(event));
      break;
    case XCB_SELECTION_CLEAR:
      stillOwns(reinterpret_cast<const xcb_selection_clear_event_t&>(event).selection);
      break;
    default:
      break;
  }
}

bool SelectionOwner::ownerChanged(xcb_atom_t selection, xcb_window_t owner, xcb_timestamp_t since) {
  if (owner != window_) {
    stillOwns(selection);
    return true;
  }
  if (const auto found = owned_.find(selection); found != owned_.end()) found->second.since = since;
  return false;
}

void SelectionOwner::answer(const xcb_selection_request_event_t& event) {
  const auto request = std::make_shared<Request>();
  request->event = event;
  // Clients older than the conventions name no property: then the target is its name (ICCCM 2.2).
  if (request->event.property == XCB_ATOM_NONE) request->event.property = event.target;
  request->multiple = event.target == x_.atom("MULTIPLE");
  if (request->multiple) {
    const auto pairs = x_.property(event.requestor, request->event.property);
    const auto atoms = pairs ? pairs->cardinals() : std::vector<std::uint32_t>();
    for (std::size_t i = 0; i + 1 < atoms.size(); i += 2) {
      request->conversions.push_back({atoms[i], atoms[i + 1]});
    }
  } else {
    request->conversions.push_back({event.target, request->event.property});
  }
  if (request->conversions.empty()) request->conversions.push_back({});  // to be refused
  for (std::size_t i = 0; i < request->conversions.size(); ++i) convert(request, i);
}

void SelectionOwner::convert(const RequestPtr& request, std::size_t index) {
  const auto& conversion = request->conversions[index];
  const auto owned = owned_.find(request->event.selection);
  if (owned == owned_.end() || conversion.property == XCB_ATOM_NONE) return finish(request, index, false);

  const std::string target = x_.atomName(conversion.target);
  Offer offer = owned->second.offer;
  std::optional<PasteTracker::PasteId> paste;
  if (tracker_.hasOpenPaste()) {
    const bool fromPrimary = request->event.selection == XCB_ATOM_PRIMARY;
    const auto reader = clientOfWindow(x_, request->event.requestor);
    if (auto reading = tracker_.readingFor(reader, fromPrimary, target, PasteTracker::Clock::now())) {
      offer = std::move(reading->offer);
      paste = reading->paste;
    }
  }

  if (target == "TIMESTAMP" && owned->second.since != XCB_CURRENT_TIME) {
    xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, request->event.requestor, conversion.property,
                        XCB_ATOM_INTEGER, 32, 1, &owned->second.since);
    return finish(request, index, true);
  }
  if (!offer) return finish(request, index, false);
  if (target == "TARGETS") {
    writeTargets(*request, conversion.property, *offer);
    return finish(request, index, true);
  }
  const auto* offered = offer->target(target);
  if (offered == nullptr) return finish(request, index, false);
  if (!offered->representation) {
    writeProperty(request->event.requestor, conversion.property, offered->form, offered->markerData);
    return finish(request, index, true);
  }
  if (offer->data(*offered->representation)) return convertContents(request, index, offer, *offered, paste);
  runProvider_(offer, *offered->representation, [this, request, index, offer, offered, paste] {
    convertContents(request, index, offer, *offered, paste);
  });
}

void SelectionOwner::convertContents(const RequestPtr& request, std::size_t index, const Offer& offer,
                                     const OfferedTarget& target,
                                     std::optional<PasteTracker::PasteId> paste) {
  auto data = offer->data(*target.representation);
  if (!data) return finish(request, index, false);
  if (target.encoding != OfferedTarget::Encoding::asGiven) {
    data = std::make_shared<const PasteboardData>(encoded(*data, target.encoding));
  }
  const auto requestor = request->event.requestor;
  const auto property = request->conversions[index].property;
  if (data->size() <= sender_.chunkBytes()) {
    writeProperty(requestor, property, target.form, *data);
    finish(request, index, true);
    if (paste) tracker_.delivered(*paste, PasteTracker::Clock::now());
    return;
  }
  const auto progressed = [this, paste] {
    if (paste) tracker_.progressed(*paste, PasteTracker::Clock::now());
  };
  const auto finished = [this, paste] {
    if (paste) tracker_.delivered(*paste, PasteTracker::Clock::now());
  };
  sender_.start(
      {requestor, property, x_.atom(target.form.type), target.form.format, data, progressed, finished});
  finish(request, index, true);
}

void SelectionOwner::finish(const RequestPtr& request, std::size_t index, bool answered) {
  auto& conversions = request->conversions;
  conversions[index].done = true;
  conversions[index].answered = answered;
  bool anyAnswered = false;
  for (const auto& conversion : conversions) {
    if (!conversion.done) return;
    anyAnswered = anyAnswered || conversion.answered;
  }

  const auto& event = request->event;
  if (request->multiple && anyAnswered) {
    std::vector<xcb_atom_t> pairs;
    for (const auto& conversion : conversions) {
      pairs.push_back(conversion.target);
      pairs.push_back(conversion.answered ? conversion.property : xcb_atom_t{XCB_ATOM_NONE});
    }
    xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, event.requestor, event.property,
                        x_.atom("ATOM_PAIR"), 32, static_cast<std::uint32_t>(pairs.size()), pairs.data());
  }
  // An event on the wire has 32 bytes, more than the structure.
  std::array<char, 32> wire{};
  auto& notify = reinterpret_cast<xcb_selection_notify_event_t&>(wire);
  notify.response_type = XCB_SELECTION_NOTIFY;
  notify.requestor = event.requestor;
  notify.selection = event.selection;
  notify.target = event.target;
  notify.property = anyAnswered ? event.property : xcb_atom_t{XCB_ATOM_NONE};
  notify.time = event.time;
  xcb_send_event(x_.get(), 0, event.requestor, XCB_EVENT_MASK_NO_EVENT, wire.data());
  x_.flush();
}

void SelectionOwner::writeProperty(xcb_window_t requestor, xcb_atom_t property, const PropertyForm& form,
                                   const std::vector<std::uint8_t>& bytes) {
  xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, requestor, property, x_.atom(form.type), form.format,
                      static_cast<std::uint32_t>(bytes.size() / (form.format / 8U)), bytes.data());
}

void SelectionOwner::writeTargets(const Request& request, xcb_atom_t property, const SelectionOffer& offer) {
  std::vector<std::string> names{"TARGETS", "TIMESTAMP", "MULTIPLE"};
  for (const auto& target : offer.targets()) names.push_back(target.name);
  const auto atoms = x_.atoms(names);
  xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, request.event.requestor, property, XCB_ATOM_ATOM, 32,
                      static_cast<std::uint32_t>(atoms.size()), atoms.data());
}

}  // namespace quorlo
