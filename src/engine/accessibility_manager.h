#pragma once

#include "base/life_token.h"
#include "text/locale_quotes.h"

#include <memory>
#include <string>
#include <string_view>

namespace quorlo {

class AccessibilityTrust;
class Alerts;
class MainQueue;
class SettingsController;
class Workspace;
struct RunningApplication;

// Whether the user lets Quorlo watch and post keys, and what happens when not: the features that need it
// are switched off, and the user is told where to grant it. One instance; main thread.
class AccessibilityManager {
 public:
  // Of the system's accessibility settings.
  static constexpr std::string_view kAccessibilityURL =
      "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

  enum class Prompt { silent, showAlert };

  // The references must outlive the manager.
  AccessibilityManager(AccessibilityTrust& trust, SettingsController& settings, Workspace& workspace,
                       Alerts& alerts, MainQueue& queue, QuotationMarks quotationMarks);

  static AccessibilityManager& shared();

  // True while the process is trusted. Otherwise switches abbreviations and Auto-Paste off; a grant made
  // while the alert is open is seen at once.
  bool checkAccessibility(Prompt prompt);

  // Modal.
  void showAccessibilityAlert();

  void openAccessibilitySettings();

  // The application that receives what is typed; null when none is active. Valid until the next turn of
  // the main queue.
  const std::shared_ptr<const RunningApplication>& frontmostApplication() const;

 private:
  AccessibilityTrust& trust_;
  SettingsController& settings_;
  Workspace& workspace_;
  Alerts& alerts_;
  MainQueue& queue_;
  QuotationMarks quotationMarks_;
  std::string accessibilityURL{kAccessibilityURL};
  LifeToken life_;
};

}  // namespace quorlo
