#include "support/opening_meter.h"

#include "target_window.h"
#include "virtual_desktop/virtual_desktop.h"
#include "virtual_desktop/wait.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <utility>

namespace quorlo {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kSettled{150};  // a picture that has not changed for so long is complete

}  // namespace

OpeningMeter::OpeningMeter(VirtualDesktop& desktop, TargetWindow& target, Part part)
    : desktop_(desktop),
      target_(target),
      part_(part),
      connection_(xcb_connect(desktop.display().c_str(), nullptr), xcb_disconnect) {}

double OpeningMeter::openOnce(const std::function<void()>& press) {
  const auto begin = Clock::now();
  press();
  const auto window = waitForOtherActiveWindow();
  const auto end = whenComplete(window);
  desktop_.keyboard().tap("Escape");
  if (!waitUntil([&] { return desktop_.windows().active() == target_.window(); })) {
    throw std::runtime_error("the focus does not come back");
  }
  target_.serve(milliseconds(100));
  return std::chrono::duration<double, std::milli>(end - begin).count();
}

xcb_window_t OpeningMeter::waitForOtherActiveWindow() {
  const auto deadline = Clock::now() + std::chrono::seconds(5);
  while (Clock::now() < deadline) {
    const auto active = desktop_.windows().active();
    if (active != 0 && active != target_.window()) return active;
    std::this_thread::sleep_for(std::chrono::microseconds(500));
  }
  throw std::runtime_error("the window does not open");
}

// When the part took its final look.
OpeningMeter::Clock::time_point OpeningMeter::whenComplete(xcb_window_t window) {
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
    throw std::runtime_error("the window shows nothing");
  }
  return last;
}

std::vector<std::uint8_t> OpeningMeter::pictureOf(xcb_window_t window) {
  const auto cookie = xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, part_.x, part_.y,
                                    part_.width, part_.height, ~0U);
  const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
      xcb_get_image_reply(connection_.get(), cookie, nullptr), &std::free);
  if (!reply) return {};
  const auto* const data = xcb_get_image_data(reply.get());
  return {data, data + xcb_get_image_data_length(reply.get())};
}

}  // namespace quorlo
