#pragma once

#include "app/settings/insertion_settings.h"
#include "app/settings/launch_at_login.h"
#include "app/settings/settings_controller.h"
#include "app/settings/sound_manager.h"
#include "app/shell/app_delegate.h"
#include "app/shell/app_setup.h"
#include "app/shell/debug_mode.h"
#include "app/shell/files/import_controller.h"
#include "app/shell/files/starter_offer.h"
#include "app/shell/menu/navigation_model.h"
#include "app/shell/menu/ql_snippet_status_menu_view_controller.h"
#include "base/core_dumps.h"
#include "base/life_token.h"
#include "base/localized.h"
#include "engine/abbreviations_monitor.h"
#include "engine/accessibility_help.h"
#include "engine/accessibility_manager.h"
#include "engine/expansion_undo.h"
#include "engine/fill_in/fill_in_controller.h"
#include "engine/paste/macro_preparation.h"
#include "engine/paste/paste_controller.h"
#include "import/export/library_export.h"
#include "import/library_import.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "platform/environment/system_environment.h"
#include "program/application_service.h"
#include "program/ignored_piece_notice.h"
#include "program/program.h"
#include "program/session_typing_context.h"
#include "program/shared_instances.h"
#include "program/single_instance.h"
#include "store/backup/library_backups.h"
#include "store/backup/rolling_backups.h"
#include "store/context/background_context.h"
#include "store/history/persistent_history_observer.h"
#include "store/persistence_controller.h"
#include "store/records/ql_snippet.h"
#include "store/records/ql_user.h"
#include "store/sqlite/file/store_opening.h"
#include "text/locale_quotes.h"
#include "ui/about/about_window.h"
#include "ui/accessibility_help_window.h"
#include "ui/backups/backups_window.h"
#include "ui/desktop/dbus_user_notifications.h"
#include "ui/desktop/file_user_defaults.h"
#include "ui/desktop/pulse_audio_player.h"
#include "ui/desktop/qt_alerts.h"
#include "ui/desktop/qt_main_queue.h"
#include "ui/desktop/qt_own_application.h"
#include "ui/desktop/screen_lock.h"
#include "ui/desktop/thread_background_queue.h"
#include "ui/fill_in_window.h"
#include "ui/import/qt_import_view.h"
#include "ui/library/library_exporter.h"
#include "ui/menu/snippet_menu_window.h"
#include "ui/qt_app_windows.h"
#include "ui/tray/qt_status_item.h"
#include "ui/typing/fcitx_input_method.h"
#include "ui/typing/ibus_engine.h"
#include "ui/typing/password_field.h"
#include "x11/desktop/x11_desktop.h"

#include <QCoreApplication>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

// What needs no display.
struct Program::Ground {
  QtMainQueue queue;
  std::filesystem::path programFile = QCoreApplication::applicationFilePath().toStdString();
  SystemEnvironment environment{programFile.parent_path()};
  Subscription catalogues =
      loadCatalogues(environment.resourcesDirectory() / "translations", environment.textLanguages());
  FileUserDefaults defaults{environment.configDirectory()};
  InsertionSettings insertion{environment.configDirectory()};
  // Set once there is something to tell the user by.
  std::function<void(const std::string& application, const std::string& name)> pieceWasIgnored;
};

// One of everything, each after what it uses.
struct Program::Parts {
  Parts(std::unique_ptr<Ground> existingGround, std::unique_ptr<SingleInstance> onlyInstance,
        std::unique_ptr<X11Desktop> connectedDesktop, std::unique_ptr<PersistenceController> openLibrary,
        std::function<void(int status)> quit);
  Parts(const Parts&) = delete;
  Parts& operator=(const Parts&) = delete;
  ~Parts();

  AppDelegate::Dependencies delegateDependencies();
  ApplicationRequests requests();
  void setWindowMakers();
  void showBackups();
  void restoreLibrary(const std::filesystem::path& backup,
                      std::function<void(const Result<RestoredLibrary>&)> completion);
  void chooseWay(const std::string& identifier);
  void createAbbreviationsMonitor();
  QLSnippetStatusMenuViewController& createStatusItemAndMenu();
  void mentionCrashReport();
  void tellBackupFailure(const Error& error);
  void checkLibraryInBackground();
  std::string inputMethod() const;  // the one that makes text of the keys; empty for none
  std::string status() const;
  std::vector<AccessibilityHelp> obstacles() const;
  std::vector<AccessibilityHelp> obstaclesNow() const;  // with those of the place where the user types
  void showObstacles();

  std::unique_ptr<Ground> ground;
  std::function<void(int status)> quit;
  QtMainQueue& queue = ground->queue;
  SystemEnvironment& environment = ground->environment;
  FileUserDefaults& defaults = ground->defaults;

  std::unique_ptr<SingleInstance> instance;
  std::unique_ptr<X11Desktop> desktop;
  PulseAudioPlayer player;
  ThreadBackgroundQueue background;
  QtAlerts alerts{desktop->targetFocus()};
  AccessibilityHelpWindow accessibilityHelp{desktop->accessibilityTrust(), desktop->targetFocus()};
  Subscription accessibilityAddress = desktop->serveAddress(
      std::string(AccessibilityManager::kAccessibilityURL), [this] { accessibilityHelp.open(); });
  SessionTypingContext context{
      {.keyboardIsTaken = [this] { return desktop->keyboardIsTaken(); },
       .passwordFieldHasFocus = [this] { return passwordField.hasFocus(); },
       .inputMethodIsActive =
           [this] { return !inputMethod().empty() && !settings.expandWhileInputMethodIsActive(); },
       .stamp = [this] { return desktop->typingStamp(); }}};
  FcitxInputMethod fcitx;
  IbusEngine ibus{queue, background};
  PasswordField passwordField{queue, background, desktop->workspace()};
  ScreenLock screenLock{[this](bool isLocked) { desktop->setScreenIsLocked(isLocked); }};
  QtOwnApplication application;
  DBusUserNotifications notifications{queue};

  std::unique_ptr<PersistenceController> library;
  PersistenceController& persistence = *library;
  SettingsController settings{defaults, queue, [this] { return environment.now(); },
                              [this]() -> std::optional<Date> {
                                const auto user = persistence.currentUser();
                                return user ? user->creationDate() : std::nullopt;
                              }};
  DebugMode debugMode{{settings, [this] { return environment.now(); }, environment.dataDirectory(),
                       reopenStandardError, allowCoreDumps}};
  SoundManager sound{settings, environment, player, background};
  QuotationMarks quotationMarks;
  AccessibilityManager accessibility{
      desktop->accessibilityTrust(), settings, desktop->workspace(), alerts, queue, quotationMarks};
  QLSnippetMacroInterpreter interpreter{
      environment, [this](const std::u16string& abbreviation) -> std::optional<AttributedString> {
        const auto snippet = persistence.snippetForAbbreviation(abbreviation);
        if (!snippet) return std::nullopt;
        return snippet->text();
      }};
  FillInWindow fillInWindow{settings};
  FillInController prompt{{queue, desktop->pasteboard(), desktop->targetFocus(), desktop->typedKeysHold(),
                           settings, environment, interpreter, fillInWindow}};
  MacroPreparation preparation{interpreter, prompt};
  PasteController paste{{queue, desktop->pasteboard(), desktop->eventPoster(), desktop->insertionTarget(),
                         desktop->keyboardLayout(), desktop->typedKeysHold(), desktop->pastedPieces(),
                         desktop->frontWindow(), application, notifications, settings, sound, preparation}};
  ExpansionUndo undo{{queue, desktop->eventPoster(), desktop->insertionTarget(), desktop->typedKeysHold(),
                      desktop->pastedPieces(), desktop->frontWindow(),
                      PasteKeys(desktop->keyboardLayout()).deleteKeyCode}};
  std::optional<AbbreviationsMonitor> monitor;  // these two when their turn in the start has come
  std::optional<SharedInstances> shared;

  LaunchAtLogin launchAtLogin{environment.configDirectory().parent_path() / "autostart", ground->programFile};
  StarterOffer starterOffer{defaults, persistence, environment.resourcesDirectory() / "starter-library.json"};
  QtStatusItem statusItem{{queue, notifications, defaults}};
  Subscription obstacleChanges = desktop->accessibilityTrust().observeObstacles([this] { showObstacles(); });
  SnippetMenuWindow menuWindow{desktop->mouseMonitor()};
  std::unique_ptr<AboutWindow> about;
  QtAppWindows windows;
  NavigationModel navigation{windows};
  std::optional<QLSnippetStatusMenuViewController> menu;  // when its turn in the start has come
  std::filesystem::path storeFile = environment.dataDirectory() / kStoreFileName;
  PersistentHistoryObserver history;
  LibraryImport libraryImport{
      {queue, background, persistence, storeFile, [] { return std::chrono::system_clock::now(); }}};
  QtImportView importView{persistence.managedObjectContext()};
  ImportController imports{{queue, background, settings, persistence, navigation, libraryImport, importView}};
  LibraryExport libraryExport{{queue, background, persistence.managedObjectContext(), [file = storeFile] {
                                 return openBackgroundContext(
                                     file, {.name = "export_context",
                                            .transactionAuthor = "export",
                                            .now = [] { return std::chrono::system_clock::now(); }});
                               }}};
  LibraryExporter exports{libraryExport, [this] { return windows.commitEditing(); }};
  ThreadBackgroundQueue backupThread;
  LibraryBackups backups{
      {queue, backupThread, environment.dataDirectory(), [] { return std::chrono::system_clock::now(); }}};
  RollingBackups rollingBackups{
      {queue, backups, persistence.managedObjectContext(), [] { return std::chrono::system_clock::now(); },
       [this] { return settings.keepsBackups(); }, [this](const Error& error) { tellBackupFailure(error); }}};
  std::unique_ptr<BackupsWindow> backupsWindow;
  IgnoredPieceNotice ignoredPieces{defaults, notifications,
                                   [this](const std::string& identifier) { chooseWay(identifier); }};
  AppSetup setup{{persistence, defaults, settings, navigation, [this] { return history.startObserving(); }}};
  AppDelegate delegate{delegateDependencies()};
  std::optional<ApplicationService> service;  // once there is something to ask of it
  LifeToken life;
};

}  // namespace quorlo
