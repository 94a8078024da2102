// How long the fill-in window takes from the key that completes the abbreviation until it has the keyboard
// and shows its fields, beyond the documented delay.
//
// quorlo_fill_in_bench [--figures FILE]; the program is the one of the same build.

#include "figures.h"
#include "target_window.h"
#include "virtual_desktop/quorlo_program.h"
#include "virtual_desktop/virtual_desktop.h"
#include "virtual_desktop/wait.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int kOpenings = 30;
constexpr milliseconds kStartDelay{50};  // before a snippet is prepared, by design
constexpr milliseconds kSettled{150};    // a picture that has not changed for so long is complete

constexpr const char* kLibrary =
    R"({"snippets": [{"uuid": "L", "title": "letter", "formatted": 0, "abbreviation": "letr",)"
    R"( "text": "Dear %textfield:name=Name:default=Ada:textfield%, %options:name=What:default=0:name0=tea:name1=coffee:options% on %date:dateLength=long:timeLength=none:showPicker=1:date%? %textfield:name=More:default=a\nb:textfield%"}]})";

class FillInMeter {
 public:
  FillInMeter(VirtualDesktop& desktop, TargetWindow& target)
      : desktop_(desktop),
        target_(target),
        connection_(xcb_connect(desktop.display().c_str(), nullptr), xcb_disconnect) {}

  double openOnce() {
    desktop_.keyboard().type("letr", milliseconds(10));
    const auto begin = Clock::now();
    desktop_.keyboard().tap("space");
    const auto window = waitForOtherActiveWindow();
    const auto end = whenComplete(window);
    desktop_.keyboard().tap("Escape");
    if (!waitUntil([&] { return desktop_.windows().active() == target_.window(); })) {
      throw std::runtime_error("the focus does not come back");
    }
    target_.serve(milliseconds(100));
    return std::chrono::duration<double, std::milli>(end - begin - kStartDelay).count();
  }

 private:
  xcb_window_t waitForOtherActiveWindow() {
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (Clock::now() < deadline) {
      const auto active = desktop_.windows().active();
      if (active != 0 && active != target_.window()) return active;
      std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
    throw std::runtime_error("the fill-in window does not open");
  }

  // When the labels at the window's left edge took their final look.
  Clock::time_point whenComplete(xcb_window_t window) {
    auto last = Clock::now();
    auto picture = pictureOf(window);
    while (picture.empty() || Clock::now() - last < kSettled) {
      std::this_thread::sleep_for(milliseconds(1));
      auto now = pictureOf(window);
      if (now == picture) continue;
      last = Clock::now();
      picture = std::move(now);
    }
    constexpr int kBytesPerPixel = 4;
    if (std::equal(picture.begin() + kBytesPerPixel, picture.end(), picture.begin())) {
      throw std::runtime_error("the fill-in window shows no labels");
    }
    return last;
  }

  std::vector<std::uint8_t> pictureOf(xcb_window_t window) {
    const auto cookie =
        xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, 10, 10, 50, 150, ~0U);
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
        xcb_get_image_reply(connection_.get(), cookie, nullptr), &std::free);
    if (!reply) return {};
    const auto* const data = xcb_get_image_data(reply.get());
    return {data, data + xcb_get_image_data_length(reply.get())};
  }

  VirtualDesktop& desktop_;
  TargetWindow& target_;
  std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
};

void run(Figures& figures) {
  VirtualDesktop desktop;
  QuorloProgram quorlo(desktop, QUORLO, kLibrary);
  TargetWindow target(desktop.display(), desktop.keyboard().keycodeOf("v"));
  desktop.windows().activate(target.window());
  FillInMeter meter(desktop, target);
  std::vector<double> samples;
  for (int i = 0; i < kOpenings; ++i) samples.push_back(meter.openOnce());
  figures.add("fill_in_first_open_ms", samples.front());
  figures.add("fill_in_open_ms", percentile(samples, 0.95));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  try {
    quorlo::Figures figures(argc, argv);
    quorlo::run(figures);
  } catch (const std::exception& problem) {
    std::cerr << "fill-in bench: " << problem.what() << "\n";
    return 1;
  }
}
