#include "program/settings_command.h"

#include "app/settings/settings_controller.h"
#include "platform/accessibility_trust.h"
#include "platform/environment/system_environment.h"
#include "ui/desktop/file_user_defaults.h"
#include "ui/desktop/qt_main_queue.h"
#include "x11/desktop/x11_desktop.h"

#include <QCoreApplication>

#include <iostream>
#include <memory>
#include <optional>
#include <string>

namespace quorlo {
namespace {

// Why keys can be neither watched nor posted; nothing when they can.
std::optional<std::string> missingPermission(MainQueue& queue) {
  const auto desktop = X11Desktop::connect({}, queue);
  if (!desktop) return desktop.error().message;
  if (!desktop.value()->accessibilityTrust().isProcessTrusted()) {
    return "The X server lacks what watching and posting keys takes (the extensions XTEST and XInput 2).";
  }
  return std::nullopt;
}

}  // namespace

int switchAbbreviations(bool on) {
  QtMainQueue queue;
  SystemEnvironment environment{QCoreApplication::applicationDirPath().toStdString()};
  FileUserDefaults defaults(environment.configDirectory());
  SettingsController settings(
      defaults, queue, [&] { return environment.now(); }, [] { return std::nullopt; });

  if (on) {
    if (const auto problem = missingPermission(queue)) {
      settings.setAbbreviationsEnabled(false);
      std::cerr << "Abbreviations stay off: " << *problem << "\n";
      return 1;
    }
  }
  settings.setAccessibilityCheck([] { return true; });
  settings.setAbbreviationsEnabled(on);
  std::cout << "Abbreviations are " << (settings.abbreviationsEnabled() ? "on" : "off") << ".\n";
  return 0;
}

}  // namespace quorlo
