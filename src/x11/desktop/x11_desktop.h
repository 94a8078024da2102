#pragma once

#include "base/result.h"
#include "base/subscription.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace quorlo {

class AccessibilityTrust;
class EventPoster;
class EventTap;
class FrontWindow;
class HotKeyCenter;
class InsertionTable;
class InsertionTarget;
class KeyboardLayout;
class MainQueue;
class MouseMonitor;
class PastedPieces;
class Pasteboard;
class TargetFocus;
class TypedKeysHold;
class Workspace;

// All that the program needs of an X server, behind its ports. Main thread.
class X11Desktop {
 public:
  struct Options {
    std::string display;                 // as in the environment variable DISPLAY, which is used when empty
    std::filesystem::path guardProgram;  // the program quorlo-keyboard-guard
    std::function<const InsertionTable&()> insertionTable;  // asked whenever something is inserted
    // Called once, on the main thread, when the server goes away. The ports then do nothing any more.
    std::function<void()> connectionLost;
    // An application goes on without having read what was pasted into it. Its desktop-file identifier or
    // window class, and its name; main thread.
    std::function<void(const std::string& application, const std::string& name)> pieceWasIgnored;
  };

  // Fails when there is no server to connect to. One that lacks what watching and posting keys takes is
  // reported as a warning and by accessibilityTrust(). The queue must outlive the desktop.
  static Result<std::unique_ptr<X11Desktop>> connect(const Options& options, MainQueue& queue);
  ~X11Desktop();
  X11Desktop(const X11Desktop&) = delete;
  X11Desktop& operator=(const X11Desktop&) = delete;

  const std::string& displayName() const;

  EventTap& eventTap();
  EventPoster& eventPoster();
  InsertionTarget& insertionTarget();
  TypedKeysHold& typedKeysHold();
  PastedPieces& pastedPieces();
  MouseMonitor& mouseMonitor();
  KeyboardLayout& keyboardLayout();
  HotKeyCenter& hotKeyCenter();
  // From now on the event tap sees no key, or sees them again.
  void setScreenIsLocked(bool isLocked);
  // Whether a lock screen, a prompt or another program has the keyboard for itself; asked after the active
  // application.
  bool keyboardIsTaken() const;
  // Another number once the active application or `keyboardIsTaken` may be others; 0 while that cannot be
  // told. Any thread.
  std::uint64_t typingStamp() const;
  AccessibilityTrust& accessibilityTrust();
  Workspace& workspace();
  // The workspace calls `open` for the address, one of the home platform that means nothing to this desktop.
  // The subscription must end before the desktop.
  Subscription serveAddress(const std::string& address, std::function<void()> open);
  Pasteboard& pasteboard();
  TargetFocus& targetFocus();
  FrontWindow& frontWindow();

 private:
  struct Parts;
  explicit X11Desktop(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> parts_;
};

}  // namespace quorlo
