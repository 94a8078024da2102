#include "engine/accessibility_manager.h"

#include "app/settings/settings_controller.h"
#include "base/localized.h"
#include "platform/accessibility_trust.h"
#include "platform/alerts.h"
#include "platform/main_queue.h"
#include "platform/workspace.h"

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

constexpr Seconds kSecondOpeningDelay{1.0};
constexpr std::u16string_view kApplicationName = u"Quorlo";

// Replaces the "%@" of a localised text, so that translators see one whole sentence.
std::u16string withName(std::u16string text, std::u16string_view name) {
  const auto place = text.find(u"%@");
  return place == std::u16string::npos ? text : text.replace(place, 2, name);
}

}  // namespace

AccessibilityManager::AccessibilityManager(AccessibilityTrust& trust, SettingsController& settings,
                                           Workspace& workspace, Alerts& alerts, MainQueue& queue,
                                           QuotationMarks quotationMarks)
    : trust_(trust),
      settings_(settings),
      workspace_(workspace),
      alerts_(alerts),
      queue_(queue),
      quotationMarks_(std::move(quotationMarks)) {}

bool AccessibilityManager::checkAccessibility(Prompt prompt) {
  if (!trust_.isProcessTrusted()) {
    settings_.setAbbreviationsEnabled(false);
    settings_.setAutoPasteIsEnabled(false);
    if (prompt == Prompt::showAlert) showAccessibilityAlert();
  }
  return trust_.isProcessTrusted();
}

void AccessibilityManager::showAccessibilityAlert() {
  const auto name = quotationMarks_.begin + std::u16string(kApplicationName) + quotationMarks_.end;
  const Alert alert{
      withName(
          localized(
              u"%@ would like to control this computer using the accessibility features in order to recognize abbreviations you type on your keyboard."),
          name),
      withName(
          localized(u"Grant access to %@ in the Security & Privacy settings located in the System Settings."),
          name),
      {localized(u"Open System Settings"), localized(u"Deny")}};
  if (alerts_.runModal(alert) != 0) return;
  openAccessibilitySettings();
  // The settings sometimes open on another page the first time.
  queue_.runAfter(kSecondOpeningDelay, life_.guard([this] { openAccessibilitySettings(); }));
}

void AccessibilityManager::openAccessibilitySettings() {
  workspace_.openURL(accessibilityURL);
}

const std::shared_ptr<const RunningApplication>& AccessibilityManager::frontmostApplication() const {
  static const std::shared_ptr<const RunningApplication> kNone;
  const auto& running = workspace_.runningApplications();
  const auto active = std::ranges::find_if(running, [](const auto& each) { return each->isActive; });
  return active == running.end() ? kNone : *active;
}

}  // namespace quorlo
