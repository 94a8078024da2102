#include "app/shell/app_delegate.h"

#include "app/settings/launch_at_login.h"
#include "app/settings/settings_controller.h"
#include "app/shell/app_setup.h"
#include "app/shell/app_windows.h"
#include "app/shell/debug_mode.h"
#include "app/shell/menu/navigation_model.h"
#include "app/shell/menu/ql_snippet_status_menu_view_controller.h"
#include "base/localized.h"
#include "base/log.h"
#include "engine/accessibility_manager.h"
#include "platform/alerts.h"
#include "platform/main_queue.h"
#include "platform/user_defaults.h"
#include "store/context/managed_object_context.h"
#include "store/persistence_controller.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <utility>
#include <variant>

namespace quorlo {
namespace {

constexpr Seconds kRepairDelay{0.25};
constexpr Seconds kPurgeDelay{10.0};

constexpr const char* kOldLaunchAtLogin = "LaunchAtLogin";

}  // namespace

AppDelegate::AppDelegate(Dependencies dependencies)
    : use_(std::move(dependencies)),
      persistenceController(use_.persistence),
      managedObjectContext(use_.persistence.managedObjectContext()) {}

void AppDelegate::applicationDidFinishLaunching() {
  use_.settings.setNumberOfLaunches(use_.settings.numberOfLaunches() + 1);
  if (const auto status = use_.setup.prepareStore(); !status) {
    didFailToRegisterForRemoteNotifications(status.error());
  }
  use_.setup.restoreSelection();
  menu_ = &use_.createStatusItemAndMenu();
  menuHotKey_.emplace(
      use_.defaults, use_.hotKeys, kSnippetMenuViewShortcut, [this] { menu_->activateAndPopUpSnippetMenu(); },
      use_.menuHotKeyRefused);
  use_.debugMode.expire();
  logInfo(fmt::format("Running {}.{}", use_.systemMajorVersion, use_.systemMinorVersion));
  use_.startCrashReporter();
  use_.createAbbreviationsMonitor();
  folderHotKeys_.emplace(managedObjectContext, use_.hotKeys,
                         [this](const auto& folder) { menu_->activateAndPopUpSnippetMenu(folder); });
  use_.queue.runAfter(kRepairDelay, life_.guard([this] { repairAndMigrate(); }));
  if (!use_.settings.welcomeViewHasBeenShown()) use_.navigation.setPresentsWelcomeView(true);
  use_.queue.runAfter(kPurgeDelay, life_.guard([this] { persistenceController.purgeTrash(); }));
  use_.accessibility.checkAccessibility(AccessibilityManager::Prompt::silent);
}

void AppDelegate::repairAndMigrate() {
  takeOverLaunchAtLogin();
  auto status = use_.setup.migrateStore();
  if (status && managedObjectContext.hasChanges()) status = managedObjectContext.save();
  if (status) return;
  logError("ERROR: #rEp4sav - " + status.error().message);
  hasTerminated_ = true;  // nothing can be saved
  use_.giveUp(status.error());
}

// Earlier versions kept the choice among the settings.
void AppDelegate::takeOverLaunchAtLogin() {
  const auto* value = use_.defaults.value(DefaultsDomain::standard, kOldLaunchAtLogin);
  const auto* wasOn = value ? std::get_if<bool>(value) : nullptr;
  if (wasOn == nullptr) return;
  if (*wasOn) {
    if (const auto status = use_.launchAtLogin.setEnabled(true); !status) {
      logError("ERROR: #lAl9mig - " + status.error().message);
      return;
    }
  }
  use_.defaults.removeValue(DefaultsDomain::standard, kOldLaunchAtLogin);
}

bool AppDelegate::applicationShouldHandleReopen() {
  if (use_.navigation.snippetEditorIsVisible()) {
    use_.navigation.showSnippetEditor();
  } else {
    menu_->popUpSnippetMenu();
  }
  return true;
}

void AppDelegate::open(const std::vector<std::filesystem::path>& files) {
  persistenceController.openFiles(files);
}

void AppDelegate::terminate() {
  if (applicationShouldTerminate() == TerminateReply::terminateCancel) return;
  applicationWillTerminate();
  use_.quit();
}

AppDelegate::TerminateReply AppDelegate::applicationShouldTerminate() {
  if (std::exchange(isTerminating_, true)) return TerminateReply::terminateCancel;
  const auto reply = saveOrAsk();
  isTerminating_ = false;
  return reply;
}

AppDelegate::TerminateReply AppDelegate::saveOrAsk() {
  if (!use_.windows.commitEditing()) {
    logWarning("AppDelegate unable to commit editing to terminate");
    return TerminateReply::terminateCancel;
  }
  use_.stopImport();
  persistenceController.makeSureOfStore();
  if (!managedObjectContext.hasChanges()) return TerminateReply::terminateNow;
  const auto status = managedObjectContext.save();
  if (status) return TerminateReply::terminateNow;
  if (presentError(status.error())) return TerminateReply::terminateCancel;
  const auto choice = use_.alerts.runModal(
      {localized(u"Could not save changes while quitting. Quit anyway?"),
       localized(u"Quitting now will lose any changes you have made since the last successful save"),
       {localized(u"Quit anyway"), localized(u"Cancel")}});
  return choice == 0 ? TerminateReply::terminateNow : TerminateReply::terminateCancel;
}

// True when the user has put right what was in the way and the changes are saved.
bool AppDelegate::presentError(const Error& error) {
  const auto choice = use_.alerts.runModal({localized(u"Your changes could not be saved."),
                                            toUtf16(error.message),
                                            {localized(u"Try Again"), localized(u"OK")}});
  return choice == 0 && managedObjectContext.save().ok();
}

void AppDelegate::applicationWillTerminate() {
  if (std::exchange(hasTerminated_, true)) return;
  use_.setup.recordSelection();
}

void AppDelegate::didFailToRegisterForRemoteNotifications(const Error& error) {
  logError("ERROR: #4hH&§eee - " + error.message);
}

std::optional<Shortcut> AppDelegate::menuShortcut() const {
  return menuHotKey_ ? menuHotKey_->shortcut() : std::nullopt;
}

void AppDelegate::setMenuShortcut(std::optional<Shortcut> shortcut) {
  if (menuHotKey_) menuHotKey_->setShortcut(shortcut);
}

}  // namespace quorlo
