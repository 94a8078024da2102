#pragma once

#include "platform/event_tap.h"
#include "virtual_desktop/virtual_desktop.h"
#include "virtual_desktop/wait.h"
#include "x11/connection/x_connection.h"
#include "x11/keyboard/key_reader.h"
#include "x11/keyboard/keyboard_service.h"
#include "x11/pumped_queue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quorlo {

// An application: a window that has the focus and writes down what its keyboard does. "a" for a key that
// types an a, "<Return>" for keys that type nothing readable, and for each release "^" and the same.
class KeyWindow {
 public:
  explicit KeyWindow(const VirtualDesktop& desktop);
  ~KeyWindow();

  // What came since the last clear(), presses only or releases too.
  const std::string& typed();
  const std::string& log();
  void clear();  // and reads the keyboard map anew
  void takeFocus();
  xcb_window_t window() const { return window_; }

 private:
  void read();

  std::unique_ptr<XConnection> connection_;
  xcb_window_t window_;
  std::unique_ptr<KeyReader> reader_;
  std::string typed_, log_;
};

// The number that the server gave to a device.
std::uint16_t deviceNamed(const VirtualDesktop& desktop, const std::string& name);

// As when the keyboard is plugged in or out.
void setKeyboardEnabled(const VirtualDesktop& desktop, const std::string& name, bool enabled);

// Of the session's keyboard, as a settings dialog sets them: XCB_XKB_BOOL_CTRL_...
void setControls(const VirtualDesktop& desktop, std::uint32_t controls, bool areOn);
// Those that are on, of the session's keyboard or another.
std::uint32_t controls(const VirtualDesktop& desktop, std::uint16_t device = 3);

// The keyboard service on a virtual desktop, with a tap whose verdicts the test gives.
class KeyboardDesktop {
 public:
  explicit KeyboardDesktop(VirtualDesktop& desktop);
  ~KeyboardDesktop();

  bool startTap();
  void stopTap() { port_.reset(); }
  EventTap::Port& port() { return *port_; }
  // Runs the main queue until the condition holds.
  bool pumpUntil(const std::function<bool()>& condition, std::chrono::milliseconds patience = kPatience);

  PumpedQueue queue;
  std::unique_ptr<KeyboardService> service;
  std::function<TapVerdict(const KeyDownEvent&)> judge;  // passes everything when empty
  std::vector<KeyDownEvent> seen;
  std::string seenText;  // the characters of the keyboard's presses
  int timeouts = 0;
  int unseen = 0;  // notices that keys passed unseen
  int connectionsLost = 0;

 private:
  std::unique_ptr<EventTap::Port> port_;
};

// One virtual desktop for the suite, with a window that has the focus; a keyboard service for each test.
class KeyboardTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    desktop_ = std::make_unique<VirtualDesktop>();
    window_ = std::make_unique<KeyWindow>(*desktop_);
  }
  static void TearDownTestSuite() {
    window_.reset();
    desktop_.reset();
  }
  void SetUp() override { window.clear(); }
  void TearDown() override {
    keys().releaseAll();
    desktop_->setLayout("us");
  }
  VirtualKeyboard& keys() { return desktop_->keyboard(); }
  // What the window has once it is that, or what it has after a while.
  std::string typedOnceItIs(const std::string& text) {
    keyboard.pumpUntil([&] { return window.typed() == text; });
    return window.typed();
  }

  inline static std::unique_ptr<VirtualDesktop> desktop_;
  inline static std::unique_ptr<KeyWindow> window_;
  KeyWindow& window = *window_;
  KeyboardDesktop keyboard{*desktop_};
};

}  // namespace quorlo
