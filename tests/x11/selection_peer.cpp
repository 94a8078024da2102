#include "x11/selection_peer.h"

#include "virtual_desktop/wait.h"

#include <xcb/xtest.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace quorlo {

namespace {

constexpr std::size_t kPiece = 200000;

xcb_window_t openWindow(const XConnection& x) {
  return x.createMessageWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
}

}  // namespace

SelectionPeer::SelectionPeer(const std::string& display)
    : x_(std::move(XConnection::open(display)).value()), window_(openWindow(*x_)) {
  x_->sync();
}

void SelectionPeer::own(const std::string& selection, Answers answers) {
  answers_ = std::move(answers);
  asked_.clear();
  isOwner_ = true;
  xcb_set_selection_owner(x_->get(), window_, x_->atom(selection), XCB_CURRENT_TIME);
  x_->sync();
}

void SelectionPeer::becomeActive() {
  const auto ping = x_->atom("_NET_WM_PING");
  xcb_change_property(x_->get(), XCB_PROP_MODE_REPLACE, window_, x_->atom("WM_PROTOCOLS"), XCB_ATOM_ATOM, 32,
                      1, &ping);
  xcb_change_property(x_->get(), XCB_PROP_MODE_REPLACE, x_->root(), x_->atom("_NET_ACTIVE_WINDOW"),
                      XCB_ATOM_WINDOW, 32, 1, &window_);
  x_->sync();
}

void SelectionPeer::tapKey(xcb_keysym_t keysym) {
  const auto* setup = xcb_get_setup(x_->get());
  for (unsigned key = setup->min_keycode; key <= setup->max_keycode; ++key) {
    const auto code = static_cast<xcb_keycode_t>(key);
    const auto mapping =
        x_->reply(xcb_get_keyboard_mapping_reply, xcb_get_keyboard_mapping(x_->get(), code, 1));
    if (!mapping || *xcb_get_keyboard_mapping_keysyms(mapping.get()) != keysym) continue;
    for (const auto type : {XCB_KEY_PRESS, XCB_KEY_RELEASE}) {
      xcb_test_fake_input(x_->get(), static_cast<std::uint8_t>(type), code, XCB_CURRENT_TIME, x_->root(), 0,
                          0, 0);
    }
    return x_->sync();
  }
  throw std::runtime_error("no key has the symbol");
}

std::string SelectionPeer::ownerOf(const std::string& selection) const {
  const auto owner =
      x_->reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x_->get(), x_->atom(selection)));
  return owner->owner == XCB_WINDOW_NONE ? "nobody" : owner->owner == window_ ? "this" : "other";
}

void SelectionPeer::step() {
  while (x_) {
    const XReply<xcb_generic_event_t> event{xcb_poll_for_event(x_->get())};
    if (!event) break;
    handle(*event);
  }
  if (x_) x_->flush();
}

void SelectionPeer::handle(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7F) {
    case XCB_SELECTION_REQUEST:
      return answer(reinterpret_cast<const xcb_selection_request_event_t&>(event));
    case XCB_CLIENT_MESSAGE: {
      auto pong = reinterpret_cast<const xcb_client_message_event_t&>(event);
      pong.window = x_->root();
      const auto mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
      xcb_send_event(x_->get(), 0, x_->root(), mask, reinterpret_cast<const char*>(&pong));
      hasAnsweredPing_ = true;
      return;
    }
    case XCB_SELECTION_CLEAR:
      isOwner_ = false;
      return;
    case XCB_SELECTION_NOTIFY:
      notified_ = reinterpret_cast<const xcb_selection_notify_event_t&>(event);
      return;
    case XCB_PROPERTY_NOTIFY: {
      const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
      if (notify.window == window_) {
        if (notify.state == XCB_PROPERTY_NEW_VALUE) ++newValues_;
      } else if (notify.state == XCB_PROPERTY_DELETE) {
        sendPiece(notify.window, notify.atom);
      }
      return;
    }
    default:
      return;
  }
}

void SelectionPeer::answer(const xcb_selection_request_event_t& request) {
  using enum Answer::Manner;
  const auto target = x_->atomName(request.target);
  asked_.push_back(target);
  std::array<char, 32> wire{};
  auto& notify = reinterpret_cast<xcb_selection_notify_event_t&>(wire);
  notify = {XCB_SELECTION_NOTIFY, 0, 0, request.time, request.requestor, request.selection, request.target,
            request.property};

  const auto known = answers_.find(target);
  if (isOwner_ && target == "TARGETS" && known == answers_.end()) {
    std::vector<std::string> names{"TARGETS", "TIMESTAMP", "MULTIPLE"};
    for (const auto& [name, unused] : answers_) names.push_back(name);
    const auto atoms = x_->atoms(names);
    xcb_change_property(x_->get(), XCB_PROP_MODE_REPLACE, request.requestor, request.property, XCB_ATOM_ATOM,
                        32, static_cast<std::uint32_t>(atoms.size()), atoms.data());
  } else if (!isOwner_ || known == answers_.end() || known->second.manner == refuse) {
    notify.property = XCB_ATOM_NONE;
  } else if (known->second.manner == silence) {
    return;
  } else {
    const auto& answer = known->second;
    const auto type = x_->atom(answer.type.empty() ? target : answer.type);
    if (answer.manner == whole) {
      xcb_change_property(
          x_->get(), XCB_PROP_MODE_REPLACE, request.requestor, request.property, type, answer.format,
          static_cast<std::uint32_t>(answer.data.size() / (answer.format / 8U)), answer.data.data());
    } else {
      const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
      xcb_change_window_attributes(x_->get(), request.requestor, XCB_CW_EVENT_MASK, &mask);
      const std::uint32_t atLeast = 1;
      xcb_change_property(x_->get(), XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                          x_->atom("INCR"), 32, 1, &atLeast);
      sending_[{request.requestor, request.property}] = {answer, type, 0};
    }
  }
  xcb_send_event(x_->get(), 0, request.requestor, 0, wire.data());
}

void SelectionPeer::sendPiece(xcb_window_t requestor, xcb_atom_t property) {
  const auto found = sending_.find({requestor, property});
  if (found == sending_.end()) return;
  auto& [answer, type, sent] = found->second;
  if (answer.manner == Answer::Manner::dieAfterFirstPiece && sent > 0) return disconnect();
  const auto size = std::min(kPiece, answer.data.size() - sent);
  xcb_change_property(x_->get(), XCB_PROP_MODE_REPLACE, requestor, property, type, 8,
                      static_cast<std::uint32_t>(size), answer.data.data() + sent);
  sent += size;
  if (size == 0) sending_.erase(found);
}

std::optional<PasteboardData> SelectionPeer::read(const std::string& selection, const std::string& target,
                                                  const std::function<void()>& meanwhile) {
  const auto property = x_->atom("PEER_DATA");
  notified_.reset();
  newValues_ = 0;
  xcb_convert_selection(x_->get(), window_, x_->atom(selection), x_->atom(target), property,
                        XCB_CURRENT_TIME);
  const auto arrives = [&](const auto& condition) {
    const bool arrived = waitUntil([&] {
      step();
      if (meanwhile) meanwhile();
      return condition();
    });
    if (!arrived) throw std::runtime_error("no answer to the request for " + target);
  };
  const auto take = [&] {
    newValues_ = 0;
    const auto value = x_->property(window_, property, std::size_t{1} << 26U);
    xcb_delete_property(x_->get(), window_, property);
    x_->flush();
    return value.value_or(XProperty{});
  };
  arrives([&] { return notified_.has_value(); });
  if (notified_->property == XCB_ATOM_NONE) return std::nullopt;
  auto value = take();
  if (value.type != x_->atom("INCR")) return value.bytes;
  for (PasteboardData whole;;) {
    arrives([&] { return newValues_ > 0; });
    value = take();
    if (value.bytes.empty()) return whole;
    whole.insert(whole.end(), value.bytes.begin(), value.bytes.end());
  }
}

std::optional<std::string> SelectionPeer::readText(const std::string& selection, const std::string& target,
                                                   const std::function<void()>& meanwhile) {
  const auto data = read(selection, target, meanwhile);
  return data ? std::optional(std::string(data->begin(), data->end())) : std::nullopt;
}

std::vector<std::string> SelectionPeer::readTargets(const std::string& selection) {
  const auto data = read(selection, "TARGETS");
  if (!data) return {};
  return x_->atomNames(XProperty{XCB_ATOM_ATOM, 32, *data}.cardinals());
}

std::vector<bool> SelectionPeer::readMultiple(const std::string& selection,
                                              const std::vector<std::string>& targets) {
  std::vector<xcb_atom_t> pairs;
  for (const auto& target : targets) {
    pairs.push_back(x_->atom(target));
    pairs.push_back(x_->atom("PEER_" + target));
  }
  xcb_change_property(x_->get(), XCB_PROP_MODE_REPLACE, window_, x_->atom("PEER_DATA"), x_->atom("ATOM_PAIR"),
                      32, static_cast<std::uint32_t>(pairs.size()), pairs.data());
  const auto answered = XProperty{XCB_ATOM_ATOM, 32, *read(selection, "MULTIPLE")}.cardinals();
  std::vector<bool> result;
  for (std::size_t i = 1; i < answered.size(); i += 2) result.push_back(answered[i] != XCB_ATOM_NONE);
  return result;
}

}  // namespace quorlo
