#include "program/program_parts.h"

#include "app/shell/quorlo_app.h"
#include "base/counted.h"
#include "base/log.h"
#include "cli/error_text.h"
#include "program/crash_report.h"
#include "program/doctor/library_check.h"
#include "program/doctor/typing_obstacle_text.h"
#include "program/library_notices.h"
#include "store/lookup/abbreviation_rules.h"
#include "text/graphemes.h"
#include "text/utf.h"
#include "ui/library/library_window.h"
#include "ui/settings/settings_pages.h"
#include "ui/settings/settings_window.h"
#include "ui/welcome/welcome_window.h"

#include <fmt/format.h>

#include <QSysInfo>
#include <QVersionNumber>

#include <chrono>
#include <utility>

namespace quorlo {
namespace {

QuotationMarks textQuotationMarks(const SystemEnvironment& environment) {
  const auto languages = environment.textLanguages();
  return languages.empty() ? QuotationMarks{} : quorlo::quotationMarks(languages.front());
}

}  // namespace

Program::Parts::Parts(std::unique_ptr<Ground> existingGround, std::unique_ptr<SingleInstance> onlyInstance,
                      std::unique_ptr<X11Desktop> connectedDesktop,
                      std::unique_ptr<PersistenceController> openLibrary,
                      std::function<void(int status)> endEventLoop)
    : ground(std::move(existingGround)),
      quit(std::move(endEventLoop)),
      instance(std::move(onlyInstance)),
      desktop(std::move(connectedDesktop)),
      library(std::move(openLibrary)),
      quotationMarks(textQuotationMarks(environment)),
      history(AppTarget::app, {queue, defaults, persistence.managedObjectContext(), storeFile,
                               [] { return std::chrono::system_clock::now(); },
                               [this] { return persistence.storeIsInPlace(); }}) {
  settings.setAccessibilityCheck(
      [this] { return accessibility.checkAccessibility(AccessibilityManager::Prompt::showAlert); });
  persistence.setFileOpener([this](const auto& files) { imports.importFiles(files); });
  ground->pieceWasIgnored = [this](const auto& identifier, const auto& name) {
    ignoredPieces.tell(identifier, name);
  };
  const auto noteChange = [this] { context.noteChange(); };
  QObject::connect(&fcitx, &FcitxInputMethod::changed, noteChange);
  QObject::connect(&ibus, &IbusEngine::changed, noteChange);
  QObject::connect(&passwordField, &PasswordField::changed, noteChange);
  persistence.setNoticeHandler([this](const auto& notice) { post(notice, notifications); });
  setWindowMakers();
}

// The windows look at much of the rest until they are gone.
Program::Parts::~Parts() {
  service.reset();
  backupsWindow.reset();
  about.reset();
  windows.destroyAll();
}

AppDelegate::Dependencies Program::Parts::delegateDependencies() {
  const auto system = QVersionNumber::fromString(QSysInfo::kernelVersion());
  return {
      .queue = queue,
      .defaults = defaults,
      .settings = settings,
      .persistence = persistence,
      .accessibility = accessibility,
      .launchAtLogin = launchAtLogin,
      .hotKeys = desktop->hotKeyCenter(),
      .alerts = alerts,
      .windows = windows,
      .navigation = navigation,
      .setup = setup,
      .debugMode = debugMode,
      .systemMajorVersion = system.majorVersion(),
      .systemMinorVersion = system.minorVersion(),
      .createStatusItemAndMenu = [this]() -> QLSnippetStatusMenuViewController& {
        return createStatusItemAndMenu();
      },
      .menuHotKeyRefused =
          [this](const Error& error) {
            notifications.post({.title = localized(u"The menu's hot key does not work"),
                                .body = toUtf16(error.message),
                                .categoryIdentifier = "hot-key",
                                .actionTitle = {}});
          },
      .startCrashReporter = [this] { mentionCrashReport(); },
      .createAbbreviationsMonitor = [this] { createAbbreviationsMonitor(); },
      .stopImport = [this] { libraryImport.stop(); },
      .quit = [this] { quit(0); },
      .giveUp =
          [this](const Error& error) {
            alerts.runModal(
                {localized(u"Quorlo cannot start."), toUtf16(inWords(error.message)), {localized(u"OK")}});
            quit(1);
          }};
}

QLSnippetStatusMenuViewController& Program::Parts::createStatusItemAndMenu() {
  showObstacles();
  return menu.emplace(QLSnippetStatusMenuViewController::Dependencies{
      .queue = queue,
      .settings = settings,
      .launchAtLogin = launchAtLogin,
      .persistence = persistence,
      .interpreter = interpreter,
      .paste = paste,
      .generalPasteboard = desktop->pasteboard(),
      .application = application,
      .focus = desktop->targetFocus(),
      .typedKeys = desktop->typedKeysHold(),
      .statusItem = statusItem,
      .view = menuWindow,
      .navigation = navigation,
      .terminate = [this] { delegate.terminate(); },
  });
}

void Program::Parts::createAbbreviationsMonitor() {
  monitor.emplace(AbbreviationsMonitor::Dependencies{
      queue, desktop->eventTap(), desktop->mouseMonitor(), desktop->workspace(), context, settings,
      accessibility, persistence, persistence.managedObjectContext(), desktop->frontWindow(), paste, undo});
  shared.emplace(settings, persistence, sound, interpreter, accessibility, paste, *monitor);
}

std::string Program::Parts::inputMethod() const {
  return (ibus.inputMethod().isEmpty() ? fcitx.inputMethod() : ibus.inputMethod()).toStdString();
}

void Program::Parts::mentionCrashReport() {
  const auto report = takeCrashReport(environment.dataDirectory());
  if (!report) return;
  logWarning("WARNING: #cRp5now - Quorlo ended unexpectedly the last time. What is known of it: " +
             report->string());
  notifications.post({.title = localized(u"Quorlo ended unexpectedly the last time."),
                      .body = toUtf16(report->string()),
                      .categoryIdentifier = "crash-report",
                      .actionTitle = {}});
}

void Program::Parts::tellBackupFailure(const Error& error) {
  notifications.post({.title = localized(u"The library could not be backed up."),
                      .body = toUtf16(error.message),
                      .categoryIdentifier = "backup",
                      .actionTitle = {}});
}

// On a thread: the whole file is read.
void Program::Parts::checkLibraryInBackground() {
  background.run([this, directory = environment.dataDirectory()] {
    const auto checked = checkLibrary(directory);
    if (checked) return;
    queue.run(life.guard([this, error = checked.error()] {
      logError("ERROR: #lChk2bd - " + error.message);
      post(LibraryNotice{LibraryNotice::Kind::isDamaged, error.message}, notifications);
    }));
  });
}

void Program::Parts::setWindowMakers() {
  const auto menuShortcut = [this] { return delegate.menuShortcut(); };
  const auto setMenuShortcut = [this](std::optional<Shortcut> shortcut) {
    delegate.setMenuShortcut(shortcut);
  };

  windows.setMaker(kSnippetEditorWindow, [this] {
    return std::make_unique<LibraryWindow>(LibraryWindow::Dependencies{
        .context = persistence.managedObjectContext(),
        .settings = settings,
        .navigation = navigation,
        .validate =
            [this](std::u16string_view abbreviation, const QLSnippet& snippet) {
              return AbbreviationRules(persistence.managedObjectContext(), quotationMarks)
                  .validate(abbreviation, snippet);
            },
        .advise =
            [this](std::u16string_view abbreviation, const QLSnippet& snippet) {
              return AbbreviationRules(persistence.managedObjectContext(), quotationMarks)
                  .advice(abbreviation, snippet, settings.abbreviationsTriggerType());
            },
        .untitledFolderName = [this] { return persistence.nextUntitledName(); },
        .showSettings = [this] { navigation.showSettings(); },
        .files = {.importFiles = [this](const auto& files,
                                        const auto& options) { imports.importFiles(files, options); },
                  .canUndoImport = [this] { return imports.canUndo(); },
                  .undoImport = [this] { imports.undoImport(); },
                  .exportSnippets = [this](const auto& offer) { exports.begin(offer); },
                  .showBackups = [this] { showBackups(); }},
    });
  });
  windows.setCommitEditing(kSnippetEditorWindow, [](QWidget& window) {
    return static_cast<LibraryWindow&>(window).commitEditing();
  });

  windows.setMaker(kSettingsWindow, [=, this] {
    return std::make_unique<SettingsWindow>(SettingsServices{
        .settings = settings,
        .insertion = ground->insertion,
        .sound = sound,
        .persistence = persistence,
        .workspace = desktop->workspace(),
        .environment = environment,
        .launchAtLogin = launchAtLogin,
        .hotKeys = desktop->hotKeyCenter(),
        .keyboardLayout = desktop->keyboardLayout(),
        .menuShortcut = menuShortcut,
        .setMenuShortcut = setMenuShortcut,
        .showWelcome = [this] { navigation.setPresentsWelcomeView(true); },
        .showBackups = [this] { showBackups(); },
        .backupFolder = backups.folder().path(),
        .showAbout =
            [this] {
              if (!about) about = std::make_unique<AboutWindow>(desktop->workspace(), QUORLO_VERSION);
              about->present();
            },
    });
  });

  windows.setMaker(kWelcomeWindow, [=, this] {
    return std::make_unique<WelcomeWindow>(WelcomeServices{
        .settings = settings,
        .launchAtLogin = launchAtLogin,
        .hotKeys = desktop->hotKeyCenter(),
        .keyboardLayout = desktop->keyboardLayout(),
        .library = persistence.managedObjectContext(),
        .interpreter = interpreter,
        .findSnippet =
            [this](std::u16string_view typed) {
              return monitor->findSnippet(typed, typed, graphemeCount(typed),
                                          settings.expandAbbreviationWithinWord(), 1);
            },
        .menuShortcut = menuShortcut,
        .setMenuShortcut = setMenuShortcut,
        .starterIsDue = [this] { return starterOffer.isDue(); },
        .answerStarterOffer = [this](bool accepted) -> Status {
          if (accepted) return starterOffer.accept();
          starterOffer.decline();
          return {};
        },
        .closed = [this] { navigation.setPresentsWelcomeView(false); },
    });
  });
}

void Program::Parts::showBackups() {
  if (!backupsWindow) {
    backupsWindow = std::make_unique<BackupsWindow>(BackupsWindowServices{
        .backups = backups,
        .settings = settings,
        .workspace = desktop->workspace(),
        .saveLibrary = [this]() -> Status {
          if (!windows.commitEditing()) return Error{toUtf8(localized(u"A snippet is being edited."))};
          return persistence.managedObjectContext().save();
        },
        .restore = [this](const auto& backup,
                          auto completion) { restoreLibrary(backup, std::move(completion)); },
    });
  }
  backupsWindow->present();
}

// Own saves wait: they belong to the library that is replaced.
void Program::Parts::restoreLibrary(const std::filesystem::path& backup,
                                    std::function<void(const Result<RestoredLibrary>&)> completion) {
  auto deferral = std::make_shared<Subscription>(persistence.deferSaves());
  backups.restore(backup, [deferral, completion = std::move(completion)](const auto& restored) {
    deferral->reset();
    completion(restored);
  });
}

void Program::Parts::chooseWay(const std::string& identifier) {
  navigation.showSettings();
  if (auto* const window = windows.window(kSettingsWindow)) {
    static_cast<SettingsWindow*>(window)->askForWay(identifier);
  }
}

ApplicationRequests Program::Parts::requests() {
  return {.reopen = [this] { delegate.applicationShouldHandleReopen(); },
          .open = [this](const auto& files) { delegate.open(files); },
          .showMenu = [this] { menu->popUpSnippetMenu(); },
          .showEditor = [this] { navigation.showSnippetEditor(); },
          .showSettings = [this] { navigation.showSettings(); },
          .quit = [this] { delegate.terminate(); },
          .status = [this] { return status(); },
          .obstacles =
              [this] {
                std::vector<std::string> list;
                for (const auto& [what, remedy] : obstaclesNow()) {
                  list.push_back(toUtf8(what));
                  list.push_back(toUtf8(remedy));
                }
                return list;
              }};
}

// While abbreviations are off nothing is watched, and nothing is missing.
std::vector<AccessibilityHelp> Program::Parts::obstacles() const {
  std::vector<AccessibilityHelp> list;
  if (!settings.abbreviationsEnabled()) return list;
  for (const auto each : desktop->accessibilityTrust().obstacles())
    list.push_back(quorlo::accessibilityHelp(each));
  return list;
}

std::vector<AccessibilityHelp> Program::Parts::obstaclesNow() const {
  auto list = obstacles();
  if (const auto& failure = persistence.saveFailure()) {
    list.push_back(
        {localized(u"What you change is kept in memory only."), toUtf16(inWords(failure->message))});
  }
  const auto obstacle = context.obstacle();
  if (obstacle && settings.abbreviationsEnabled()) {
    list.push_back(typingObstacleHelp(*obstacle, inputMethod()));
  }
  return list;
}

void Program::Parts::showObstacles() {
  auto toolTip = QuorloApp(QUORLO_VERSION).toolTip();
  for (const auto& each : obstacles()) toolTip += u"\n" + each.what;
  statusItem.setToolTip(toolTip);
}

std::string Program::Parts::status() const {
  const auto snippets =
      persistence.managedObjectContext().count(Entity::snippet, QLSnippet::kDeletionDate.isNil());
  std::string missing;
  for (const auto& [what, remedy] : obstaclesNow())
    missing += "  " + toUtf8(what) + " " + toUtf8(remedy) + "\n";
  return fmt::format("Quorlo {} runs on display {}.\nAbbreviations are {}.\n{}{} in {}.\n", QUORLO_VERSION,
                     desktop->displayName(), settings.abbreviationsEnabled() ? "on" : "off", missing,
                     counted(snippets ? snippets.value() : 0, "snippet", "snippets"), storeFile.string());
}

}  // namespace quorlo
