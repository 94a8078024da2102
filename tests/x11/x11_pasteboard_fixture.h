#pragma once

#include "x11/selection/x11_pasteboard.h"

#include "base/log.h"
#include "platform/pasteboard_contract.h"
#include "virtual_desktop/child_process.h"
#include "virtual_desktop/temp_dir.h"
#include "virtual_desktop/xorg_server.h"
#include "x11/pumped_queue.h"
#include "x11/selection_peer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <latch>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <vector>
namespace quorlo {

inline const std::string kClipboard = "CLIPBOARD";
inline const std::string kPrimary = "PRIMARY";
inline const std::string kUtf8 = "UTF8_STRING";
inline constexpr xcb_keysym_t kPlainKey = 'a';
inline constexpr xcb_keysym_t kControlKey = 0xFFE3;

inline PasteboardData bytes(std::string_view text) {
  return {text.begin(), text.end()};
}

// No two pieces of it are alike.
inline PasteboardData largeData(std::size_t size) {
  PasteboardData data(size);
  std::uint32_t state = 1;
  for (auto& byte : data) {
    state = state * 1664525U + 1013904223U;
    byte = static_cast<std::uint8_t>(state >> 24U);
  }
  return data;
}

inline PasteboardContents text(std::string_view utf8, std::vector<PasteboardType> markers = {}) {
  PasteboardItem item;
  item.setText(utf8);
  return {{item}, std::move(markers), false};
}

// A pasteboard on an X server of its own, beside a program that copies and one that pastes.
class X11PasteboardTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    directory_ = std::make_unique<TempDir>();
    server_ = std::make_unique<XorgServer>(directory_->path(), std::vector<std::string>{});
  }
  static void TearDownTestSuite() {
    server_.reset();
    directory_.reset();
  }

  void SetUp() override {
    log_ = redirectLog([this](LogLevel, std::string_view line) { lines_.emplace_back(line); });
    X11Pasteboard::Options options;
    options.pastesFromPrimary = [this] { return terminalInFront_; };
    options.readBudget = {2'000'000, std::chrono::milliseconds(500)};
    pasteboard_ = std::move(X11Pasteboard::connect(display(), queue_, options)).value();
  }

  static const std::string& display() { return server_->display(); }
  bool runUntil(const std::function<bool()>& condition) {
    return queue_.pumpUntil([&] {
      owner_.step();
      return condition();
    });
  }
  PasteboardCopy copied() {
    return copyOf(*pasteboard_, [this](const auto& condition) { return runUntil(condition); });
  }
  std::vector<PasteboardItem> read() { return copied().items; }
  // What a program of another process gets.
  std::string readElsewhere(const std::string& selection) const {
    const auto output = *directory_ / "elsewhere.txt";
    writeFile(output, "");
    ChildProcess xclip(
        {{"xclip", "-o", "-t", kUtf8, "-selection", selection}, {{"DISPLAY", display()}}, output});
    xclip.waitForEnd(kPatience);
    return readFile(output);
  }
  PasteTarget target() const { return {target_.window(), 0}; }
  // The target hangs: it takes neither keys nor answers.
  void pasteIntoHangingTarget() {
    target_.becomeActive();
    pasteboard_->setContents(text("piece"));
    pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboard);
    pasteboard_->setContents(text("the user's password"));
    ASSERT_TRUE(everythingIsRead()) << "typed keys are held no longer";
  }
  bool everythingIsRead() {
    return waitUntil([&] { return !pasteboard_->pasteTracker().hasUnreadPaste(); });
  }

  static inline std::unique_ptr<TempDir> directory_;
  static inline std::unique_ptr<XorgServer> server_;
  PumpedQueue queue_;
  std::vector<std::string> lines_;
  Subscription log_;
  bool terminalInFront_ = false;
  std::unique_ptr<X11Pasteboard> pasteboard_;
  SelectionPeer owner_{display()};   // an application that copies
  SelectionPeer target_{display()};  // one that pastes
};

}  // namespace quorlo
