#include "program/program.h"

#include "app/settings/settings_controller.h"
#include "app/settings/sound_manager.h"
#include "base/localized.h"
#include "base/log.h"
#include "engine/abbreviations_monitor.h"
#include "engine/accessibility_manager.h"
#include "engine/fill_in_controller.h"
#include "engine/macro_preparation.h"
#include "engine/paste_controller.h"
#include "macros/find_macros.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "program/lost_display_notice.h"
#include "program/shared_instances.h"
#include "program/single_instance.h"
#include "store/library_document.h"
#include "store/persistence_controller.h"
#include "store/ql_snippet.h"
#include "store/ql_user.h"
#include "text/locale_quotes.h"
#include "ui/accessibility_help_window.h"
#include "ui/dbus_user_notifications.h"
#include "ui/file_user_defaults.h"
#include "ui/fill_in_window.h"
#include "ui/pulse_audio_player.h"
#include "ui/qt_alerts.h"
#include "ui/qt_main_queue.h"
#include "ui/qt_own_application.h"
#include "ui/system_environment.h"
#include "ui/thread_background_queue.h"
#include "x11/x11_desktop.h"

#include <fmt/format.h>

#include <QCoreApplication>

#include <utility>

namespace quorlo {
namespace {

std::filesystem::path libraryToRead(const Program::Options& options, const Environment& environment) {
  if (options.library) return *options.library;
  const auto own = environment.dataDirectory() / "library.json";
  if (std::filesystem::exists(own)) return own;
  return environment.resourcesDirectory() / "starter-library.json";
}

QuotationMarks textQuotationMarks(const SystemEnvironment& environment) {
  const auto languages = environment.textLanguages();
  return languages.empty() ? QuotationMarks{} : quotationMarks(languages.front());
}

}  // namespace

// What needs no display.
struct Program::Ground {
  QtMainQueue queue;
  std::filesystem::path programDirectory = QCoreApplication::applicationDirPath().toStdString();
  SystemEnvironment environment{programDirectory};
  Subscription catalogues =
      loadCatalogues(environment.resourcesDirectory() / "translations", environment.textLanguages());
  FileUserDefaults defaults{environment.configDirectory()};
};

struct Program::Parts {
  Parts(std::unique_ptr<Ground> existingGround, std::unique_ptr<SingleInstance> onlyInstance,
        std::unique_ptr<X11Desktop> connectedDesktop)
      : ground(std::move(existingGround)),
        instance(std::move(onlyInstance)),
        desktop(std::move(connectedDesktop)) {
    settings.setAccessibilityCheck(
        [this] { return accessibility.checkAccessibility(AccessibilityManager::Prompt::showAlert); });
    setDebugLogging(settings.debugModeEnabled());
  }

  std::unique_ptr<Ground> ground;
  QtMainQueue& queue = ground->queue;
  SystemEnvironment& environment = ground->environment;

  std::unique_ptr<SingleInstance> instance;
  std::unique_ptr<X11Desktop> desktop;
  PulseAudioPlayer player;
  ThreadBackgroundQueue background;
  QtAlerts alerts{desktop->targetFocus()};
  AccessibilityHelpWindow accessibilityHelp{desktop->accessibilityTrust(), desktop->targetFocus()};
  Subscription accessibilityAddress = desktop->serveAddress(
      std::string(AccessibilityManager::kAccessibilityURL), [this] { accessibilityHelp.open(); });
  QtOwnApplication application;
  DBusUserNotifications notifications{queue};

  PersistenceController persistence{queue, environment, {.findMacroStrings = findMacroStrings}};
  SettingsController settings{ground->defaults, queue, [this] { return environment.now(); },
                              [this]() -> std::optional<Date> {
                                const auto user = persistence.currentUser();
                                return user ? user->creationDate() : std::nullopt;
                              }};
  SoundManager sound{settings, environment, player, background};
  AccessibilityManager accessibility{
      desktop->accessibilityTrust(),  settings, desktop->workspace(), alerts, queue,
      textQuotationMarks(environment)};
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
  PasteController paste{{queue, desktop->pasteboard(), desktop->eventPoster(), desktop->keyboardLayout(),
                         desktop->typedKeysHold(), application, notifications, settings, sound, preparation}};
  AbbreviationsMonitor monitor{{queue, desktop->eventTap(), desktop->mouseMonitor(), desktop->workspace(),
                                settings, accessibility, persistence, persistence.managedObjectContext(),
                                paste}};
  Subscription debugMode = settings.observe([this](Setting changed) {
    if (changed == Setting::debugModeEnabled) setDebugLogging(settings.debugModeEnabled());
  });
  SharedInstances shared{settings, persistence, sound, interpreter, accessibility, paste, monitor};
};

Program::Program(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}
Program::~Program() = default;

Result<std::unique_ptr<Program>> Program::start(const Options& options) {
  auto ground = std::make_unique<Ground>();

  X11Desktop::Options desktopOptions;
  desktopOptions.terminalsFile = ground->environment.configDirectory() / "terminals";
  desktopOptions.guardProgram = ground->programDirectory / "quorlo-keyboard-guard";
  desktopOptions.connectionLost = [quit = options.quit] {
    sayThatTheDisplayIsLost();
    quit(1);
  };
  auto desktop = X11Desktop::connect(desktopOptions, ground->queue);
  if (!desktop) return desktop.error();

  auto instance = SingleInstance::acquire(desktop.value()->displayName());
  if (!instance) return instance.error();

  const auto file = libraryToRead(options, ground->environment);
  auto parts =
      std::make_unique<Parts>(std::move(ground), std::move(instance).value(), std::move(desktop).value());
  const auto report = readLibraryFile(file, parts->persistence.managedObjectContext());
  if (!report) return report.error();
  logInfo(fmt::format("Read {} snippets from {}.", report.value().addedSnippets, file.string()));

  parts->accessibility.checkAccessibility(AccessibilityManager::Prompt::silent);
  if (options.abbreviations) parts->settings.setAbbreviationsEnabled(*options.abbreviations);
  if (!parts->settings.abbreviationsEnabled()) {
    logInfo("Abbreviations are off. Switch them on with: quorlo --abbreviations on");
  }
  return std::unique_ptr<Program>(new Program(std::move(parts)));
}

}  // namespace quorlo
