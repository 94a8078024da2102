// quorlo-keyboard-guard: frees the keyboard from a Quorlo that hangs.
//
// Sees every physical key press as a raw event. Quorlo, which has the keyboards grabbed, writes to this
// program's standard input, a socket, the server time (4 bytes) of each press that it has dealt with; the
// guard writes one byte to it when it is ready. A press that
// stays unanswered makes the guard ask first, by a client message, since there are keys that Quorlo never
// gets to see; without an answer it ends Quorlo's X client, and with it the grab. Quorlo starts anew with
// another connection, and another guard, as soon as it can.
//
// Usage: quorlo-keyboard-guard DISPLAY WINDOW ATOM

#include <poll.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>
#include <set>

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kAskAfter{300};
constexpr std::chrono::milliseconds kEndAfter{500};

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Owned = std::unique_ptr<T, Free>;

struct Press {
  std::uint32_t time;
  Clock::time_point seen;
};

class Guard {
 public:
  Guard(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t askAtom)
      : connection_(connection),
        root_(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root),
        window_(window),
        askAtom_(askAtom) {}

  bool begin() {
    const auto* input = xcb_get_extension_data(connection_, &xcb_input_id);
    if (input == nullptr || input->present == 0) return false;
    inputOpcode_ = input->major_opcode;
    const Owned<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        connection_, xcb_input_xi_query_version(connection_, 2, 2), nullptr));
    findXtestKeyboards();
    const struct {
      xcb_input_event_mask_t header{0, 1};  // all devices
      std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_HIERARCHY;
    } rawKeys;
    xcb_input_xi_select_events(connection_, root_, 1, &rawKeys.header);
    sync();
    const char ready = '!';
    return version != nullptr && write(STDIN_FILENO, &ready, 1) == 1;
  }

  void run() {
    while (readEvents()) {
      std::array<pollfd, 2> waiting{pollfd{STDIN_FILENO, POLLIN, 0},
                                    pollfd{xcb_get_file_descriptor(connection_), POLLIN, 0}};
      poll(waiting.data(), waiting.size(), timeToNextStep());
      if (waiting[0].revents != 0 && !readAnswers()) {
        releaseKeys();  // Quorlo has ended, perhaps with keys pressed
        return;
      }
      if (!watch()) return;
    }
  }

 private:
  bool readEvents() {
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
      if ((event->response_type & 0x7F) != XCB_GE_GENERIC) continue;
      const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(*event);
      if (generic.extension != inputOpcode_) continue;
      if (generic.event_type == XCB_INPUT_HIERARCHY) findXtestKeyboards();
      if (generic.event_type != XCB_INPUT_RAW_KEY_PRESS) continue;
      const auto& press = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(*event);
      // The session's keyboard repeats what a physical one or XTEST reports.
      if (press.deviceid != press.sourceid || xtestKeyboards_.contains(press.deviceid)) continue;
      if (!isAnswered(press.time)) unanswered_.push_back({press.time, Clock::now()});
    }
    return xcb_connection_has_error(connection_) == 0;
  }

  bool isAnswered(std::uint32_t time) const {
    return anyAnswer_ && static_cast<std::int32_t>(lastAnswer_ - time) >= 0;  // times wrap
  }

  bool readAnswers() {
    std::array<std::uint32_t, 256> times{};
    const auto size = read(STDIN_FILENO, times.data(), sizeof times);
    if (size < 0) return errno == EINTR || errno == EAGAIN;
    if (size == 0) return false;
    // Each message is sent whole, so that no read ends inside one.
    lastAnswer_ = times[static_cast<std::size_t>(size) / sizeof times[0] - 1];
    lastAnswerSeen_ = Clock::now();
    anyAnswer_ = true;
    while (!unanswered_.empty() && isAnswered(unanswered_.front().time)) {
      unanswered_.pop_front();
      asked_ = false;
    }
    return true;
  }

  // Who works through many keys that were typed at once gives a sign with each.
  Clock::time_point waitingSince() const { return std::max(unanswered_.front().seen, lastAnswerSeen_); }

  int timeToNextStep() const {
    if (unanswered_.empty()) return -1;
    const auto due = waitingSince() + (asked_ ? kEndAfter : kAskAfter);
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now());
    return left.count() > 0 ? static_cast<int>(left.count()) : 0;
  }

  // False when the work is done.
  bool watch() {
    if (unanswered_.empty()) return true;
    const auto age = Clock::now() - waitingSince();
    if (!asked_ && age >= kAskAfter) {
      asked_ = true;
      xcb_client_message_event_t question{};
      question.response_type = XCB_CLIENT_MESSAGE;
      question.format = 32;
      question.window = window_;
      question.type = askAtom_;
      question.data.data32[0] = unanswered_.front().time;
      xcb_send_event(connection_, 0, window_, XCB_EVENT_MASK_NO_EVENT,
                     reinterpret_cast<const char*>(&question));
      xcb_flush(connection_);
    }
    if (age < kEndAfter) return true;
    std::fputs("Quorlo did not answer a key press; its hold on the keyboard was ended.\n", stderr);
    xcb_kill_client(connection_, window_);
    releaseKeys();
    return false;
  }

  void findXtestKeyboards() {
    static constexpr char kName[] = "XTEST Device";
    const Owned<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection_, xcb_intern_atom(connection_, 0, sizeof kName - 1, kName), nullptr));
    const Owned<xcb_input_xi_query_device_reply_t> devices(
        xcb_input_xi_query_device_reply(connection_, xcb_input_xi_query_device(connection_, 0), nullptr));
    if (!atom || !devices) return;
    xtestKeyboards_.clear();
    for (auto it = xcb_input_xi_query_device_infos_iterator(devices.get()); it.rem > 0;
         xcb_input_xi_device_info_next(&it)) {
      if (it.data->type != XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD) continue;
      const Owned<xcb_input_xi_get_property_reply_t> property(xcb_input_xi_get_property_reply(
          connection_,
          xcb_input_xi_get_property(connection_, it.data->deviceid, 0, atom->atom, XCB_ATOM_INTEGER, 0, 1),
          nullptr));
      if (property && property->num_items > 0) xtestKeyboards_.insert(it.data->deviceid);
    }
  }

  // Keys that Quorlo pressed and can no longer let go would repeat for ever.
  void releaseKeys() {
    for (const auto device : xtestKeyboards_) {
      const Owned<xcb_input_query_device_state_reply_t> state(xcb_input_query_device_state_reply(
          connection_, xcb_input_query_device_state(connection_, static_cast<std::uint8_t>(device)),
          nullptr));
      if (!state) continue;
      for (auto it = xcb_input_query_device_state_classes_iterator(state.get()); it.rem > 0;
           xcb_input_input_state_next(&it)) {
        if (it.data->class_id != XCB_INPUT_INPUT_CLASS_KEY) continue;
        const auto* keys = reinterpret_cast<const xcb_input_key_state_t*>(it.data);
        for (unsigned keycode = 8; keycode < 256; ++keycode) {
          if ((keys->keys[keycode / 8] >> (keycode % 8) & 1U) == 0) continue;
          xcb_test_fake_input(connection_, XCB_KEY_RELEASE, static_cast<std::uint8_t>(keycode),
                              XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        }
      }
    }
    sync();
  }

  void sync() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }

  xcb_connection_t* connection_;
  xcb_window_t root_;
  xcb_window_t window_;
  xcb_atom_t askAtom_;
  std::uint8_t inputOpcode_ = 0;
  std::set<std::uint16_t> xtestKeyboards_;
  std::deque<Press> unanswered_;
  bool asked_ = false;  // for the first of them
  bool anyAnswer_ = false;
  std::uint32_t lastAnswer_ = 0;
  Clock::time_point lastAnswerSeen_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("Started by Quorlo only. Usage: quorlo-keyboard-guard DISPLAY WINDOW ATOM\n", stderr);
    return 2;
  }
  xcb_connection_t* const connection = xcb_connect(argv[1], nullptr);
  if (xcb_connection_has_error(connection) != 0) {
    xcb_disconnect(connection);
    return 1;
  }
  {
    Guard guard(connection, static_cast<xcb_window_t>(std::strtoul(argv[2], nullptr, 10)),
                static_cast<xcb_atom_t>(std::strtoul(argv[3], nullptr, 10)));
    if (guard.begin()) guard.run();
  }
  xcb_disconnect(connection);
  return 0;
}
