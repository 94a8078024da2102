// What the tap costs: the time from a key on a keyboard of a real X server to the window that has the
// focus, with and without the tap in one run, and whether all keys of a long burst arrive in order.
#include "figures.h"
#include "platform/event_tap.h"
#include "platform/main_queue.h"
#include "virtual_desktop/virtual_desktop.h"
#include "x11/keyboard/keyboard_service.h"

#include <poll.h>
#include <xcb/xcb.h>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

namespace quorlo {
namespace {

using Clock = std::chrono::steady_clock;

// A main thread that does nothing but answer.
class MainThread : public MainQueue {
 public:
  MainThread() : thread_([this] { loop(); }) {}
  ~MainThread() override {
    run(nullptr);
    thread_.join();
  }
  void run(Task task) override {
    {
      const std::lock_guard lock(mutex_);
      tasks_.push_back(std::move(task));
    }
    changed_.notify_one();
  }
  void runAfter(Seconds, Task) override { throw std::logic_error("no delays here"); }
  Instant now() const override { return Clock::now(); }

  void runAndWait(const Task& task) {
    bool done = false;
    std::mutex mutex;
    std::condition_variable changed;
    run([&] {
      task();
      const std::lock_guard lock(mutex);
      done = true;
      changed.notify_one();
    });
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return done; });
  }

 private:
  void loop() {
    for (;;) {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return !tasks_.empty(); });
      const auto task = std::move(tasks_.front());
      tasks_.pop_front();
      lock.unlock();
      if (!task) return;
      task();
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task> tasks_;
  std::thread thread_;
};

// A window that has the focus.
class Window {
 public:
  explicit Window(const std::string& display)
      : connection_(xcb_connect(display.c_str(), nullptr), xcb_disconnect) {
    auto* const x = connection_.get();
    if (xcb_connection_has_error(x) != 0) throw std::runtime_error("no display " + display);
    const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
    const auto window = xcb_generate_id(x);
    const std::array<std::uint32_t, 2> values{1, XCB_EVENT_MASK_KEY_PRESS};
    xcb_create_window(x, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    xcb_map_window(x, window);
    xcb_set_input_focus(x, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    sync();
  }

  // The next key press, or 0 when none comes in time.
  std::uint8_t nextKey(std::chrono::milliseconds patience) {
    for (;;) {
      while (auto* const event = xcb_poll_for_event(connection_.get())) {
        const auto type = event->response_type & 0x7f;
        const auto keycode = reinterpret_cast<const xcb_key_press_event_t*>(event)->detail;
        std::free(event);
        if (type == XCB_KEY_PRESS) return keycode;
      }
      pollfd descriptor{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
      if (poll(&descriptor, 1, static_cast<int>(patience.count())) == 0) return 0;
    }
  }

 private:
  void sync() {
    auto* const x = connection_.get();
    std::free(xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));
  }

  std::shared_ptr<xcb_connection_t> connection_;
};

// Letters of the rows of a US keyboard, in an order without short periods.
std::uint8_t keyNumber(int i) {
  static constexpr std::array<std::uint8_t, 26> kLetters{24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 38, 39, 40,
                                                         41, 42, 43, 44, 45, 46, 52, 53, 54, 55, 56, 57, 58};
  return kLetters[static_cast<std::size_t>((i * 7 + i / 26 * 11) % 26)];
}

class Bench {
 public:
  Bench() : window_(desktop_.display()) {
    main_.runAndWait([this] {
      auto service = KeyboardService::start({desktop_.display(), QUORLO_KEYBOARD_GUARD, nullptr}, main_);
      if (!service) throw std::runtime_error(service.error().message);
      service_ = std::move(service).value();
    });
  }
  ~Bench() {
    setTap(Tap::none);
    main_.runAndWait([this] { service_.reset(); });
  }

  enum class Tap { none, asks, passesUnasked };

  void setTap(Tap tap) {
    main_.runAndWait([this, tap] {
      tap_.reset();
      if (tap == Tap::none) return;
      tap_ = service_->createTap([](TapEventType, const KeyDownEvent*, void*) { return TapVerdict::pass; },
                                 nullptr);
      if (!tap_) throw std::runtime_error("no keyboard can be watched");
      if (tap == Tap::asks) return;
      tap_->passUnasked([this, kept = 0](const KeyDownEvent&) mutable {
        if (++kept % 32 == 0)
          main_.run([this] {
            if (tap_) tap_->takePassedKeys();
          });
        return true;
      });
    });
  }

  void measureLatency(int keys, std::vector<double>& milliseconds) {
    for (int i = 0; i < keys; ++i) {
      const auto key = keyNumber(i);
      const auto begin = Clock::now();
      desktop_.keyboard().press(key);
      const auto arrived = window_.nextKey(std::chrono::seconds(5));
      milliseconds.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
      if (arrived != key) throw std::runtime_error("a key did not arrive");
      desktop_.keyboard().release(key);
      std::this_thread::sleep_for(std::chrono::milliseconds(2));  // the typist, ten times as fast as one
    }
  }

  // How many of the keys did not arrive, or not in their order.
  int burst(int keys) {
    std::thread typist([this, keys] {
      for (int i = 0; i < keys; ++i) {
        // The server itself drops keys once thousands wait: it is kept full, not flooded.
        while (i - arrived_ > kInFlight) std::this_thread::yield();
        desktop_.keyboard().tap(keyNumber(i));
      }
    });
    int wrong = 0;
    for (int i = 0; i < keys; ++i) {
      const auto key = window_.nextKey(std::chrono::seconds(5));
      if (key != keyNumber(i)) ++wrong;
      ++arrived_;
      if (key == 0) {
        wrong = keys - i;
        arrived_ = keys;
        break;
      }
    }
    typist.join();
    return wrong;
  }

 private:
  static constexpr int kInFlight = 200;

  VirtualDesktop desktop_;
  Window window_;
  MainThread main_;
  std::unique_ptr<KeyboardService> service_;
  std::unique_ptr<EventTap::Port> tap_;
  std::atomic<int> arrived_ = 0;
};

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  using namespace quorlo;
  try {
    Figures figures(argc, argv);
    Bench bench;
    std::vector<double> direct, asked, unasked;
    for (int round = 0; round < 5; ++round) {
      bench.setTap(Bench::Tap::none);
      bench.measureLatency(400, direct);
      bench.setTap(Bench::Tap::passesUnasked);
      bench.measureLatency(400, unasked);
      bench.setTap(Bench::Tap::asks);
      bench.measureLatency(400, asked);
    }
    const auto print = [](const char* name, const std::vector<double>& times) {
      std::printf("key to window, %-24s p50 %.3f  p99 %.3f ms\n", name, percentile(times, 0.5),
                  percentile(times, 0.99));
    };
    print("without the tap:", direct);
    print("passed unasked:", unasked);
    print("passed by the callback:", asked);
    figures.add("tap_added_p99_ms", percentile(asked, 0.99) - percentile(direct, 0.99));
    figures.add("tap_added_unasked_p99_ms", percentile(unasked, 0.99) - percentile(direct, 0.99));
    const auto begin = Clock::now();
    figures.add("tap_lost_of_100k", bench.burst(100000));
    std::printf("100,000 keys in %.1f s\n", std::chrono::duration<double>(Clock::now() - begin).count());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quorlo_tap_latency_bench: %s\n", error.what());
    return 1;
  }
  return 0;
}
