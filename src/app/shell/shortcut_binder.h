#pragma once

#include "base/result.h"
#include "base/subscription.h"
#include "platform/shortcut.h"

#include <functional>
#include <optional>
#include <string>

namespace quorlo {

class HotKeyCenter;
class UserDefaults;

inline constexpr const char* kSnippetMenuViewShortcut = "SnippetMenuViewShortcut";

// A hot key of the user's choice, kept under a key of the standard domain as JSON text:
// {"keyCode":49,"modifierFlags":786432}. Follows what other processes store. Main thread.
class ShortcutBinder {
 public:
  // The references must outlive the binder. `refused` hears of a combination that cannot be had at present.
  ShortcutBinder(UserDefaults& defaults, HotKeyCenter& hotKeys, std::string key, std::function<void()> action,
                 std::function<void(const Error&)> refused = {});

  // Absent when none is stored.
  std::optional<Shortcut> shortcut() const;

  // Stored even where the combination cannot be had at present, which is logged.
  void setShortcut(std::optional<Shortcut> shortcut);

 private:
  void bind();

  UserDefaults& defaults_;
  HotKeyCenter& hotKeys_;
  std::string key_;
  std::function<void()> action_;
  std::function<void(const Error&)> refused_;
  Subscription registration_;
  Subscription externalChanges_;
};

}  // namespace quorlo
