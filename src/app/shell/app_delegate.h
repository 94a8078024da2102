#pragma once

#include "app/shell/folder_hot_keys.h"
#include "app/shell/shortcut_binder.h"
#include "base/life_token.h"
#include "base/result.h"
#include "platform/shortcut.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace quorlo {

class AccessibilityManager;
class Alerts;
class AppSetup;
class AppWindows;
class DebugMode;
class HotKeyCenter;
class LaunchAtLogin;
class MainQueue;
class ManagedObjectContext;
class NavigationModel;
class PersistenceController;
class QLSnippetStatusMenuViewController;
class SettingsController;
class UserDefaults;

// Starts the program, answers what the desktop asks of it while it runs, and ends it. One instance; main
// thread.
class AppDelegate {
 public:
  struct Dependencies {
    MainQueue& queue;
    UserDefaults& defaults;
    SettingsController& settings;
    PersistenceController& persistence;
    AccessibilityManager& accessibility;
    LaunchAtLogin& launchAtLogin;
    HotKeyCenter& hotKeys;
    Alerts& alerts;
    AppWindows& windows;
    NavigationModel& navigation;
    AppSetup& setup;
    DebugMode& debugMode;

    int systemMajorVersion;
    int systemMinorVersion;

    // Each called once, when its turn has come.
    std::function<QLSnippetStatusMenuViewController&()> createStatusItemAndMenu;
    std::function<void(const Error&)> menuHotKeyRefused;
    std::function<void()> startCrashReporter;
    std::function<void()> createAbbreviationsMonitor;

    std::function<void()> stopImport;  // what is under way comes to nothing; the library's file is free then
    std::function<void()> quit;        // ends the event loop
    std::function<void(const Error&)> giveUp;  // says why the program cannot go on, and ends it as a failure
  };

  enum class TerminateReply { terminateCancel, terminateNow };

  // The references must outlive the delegate. The store has been loaded.
  explicit AppDelegate(Dependencies dependencies);
  AppDelegate(const AppDelegate&) = delete;
  AppDelegate& operator=(const AppDelegate&) = delete;

  // The start, in order; some of it comes 0.25 s and 10 s later.
  void applicationDidFinishLaunching();

  // Quorlo was started again, or called from the desktop.
  bool applicationShouldHandleReopen();
  // Files that the user opened with Quorlo.
  void open(const std::vector<std::filesystem::path>& files);

  // Ends the program, if the user's changes can be saved or the user gives them up.
  void terminate();
  // Asks and saves. Until it is answered, asking again answers "cancel".
  TerminateReply applicationShouldTerminate();
  // Keeps the selection and saves. Only the first call does anything.
  void applicationWillTerminate();

  void didFailToRegisterForRemoteNotifications(const Error& error);

  // The hot key of the menu. After the start.
  std::optional<Shortcut> menuShortcut() const;
  void setMenuShortcut(std::optional<Shortcut> shortcut);

 private:
  void repairAndMigrate();
  void takeOverLaunchAtLogin();
  TerminateReply saveOrAsk();
  bool presentError(const Error& error);

  Dependencies use_;
  PersistenceController& persistenceController;
  ManagedObjectContext& managedObjectContext;
  QLSnippetStatusMenuViewController* menu_ = nullptr;
  std::optional<ShortcutBinder> menuHotKey_;
  std::optional<FolderHotKeys> folderHotKeys_;
  bool isTerminating_ = false;
  bool hasTerminated_ = false;
  LifeToken life_;
};

}  // namespace quorlo
