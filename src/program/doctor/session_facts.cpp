#include "program/doctor/session_facts.h"

#include "app/settings/launch_at_login.h"
#include "app/settings/settings_controller.h"
#include "platform/accessibility_trust.h"
#include "platform/environment/environment.h"
#include "program/doctor/library_check.h"
#include "program/running_instance.h"
#include "x11/connection/x_connection.h"
#include "x11/desktop/x11_desktop.h"
#include "x11/selection/selection_program.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QVariant>

#include <unistd.h>
#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

void lookAtTheDisplay(MainQueue& queue, SessionFacts& facts) {
  const auto x = XConnection::open("");
  if (!x) {
    facts.displayProblem = x.error().message;
    return;
  }
  facts.hasXEmbedTray = programOwningSelection(*x.value(), "_NET_SYSTEM_TRAY_S0").has_value();
  const auto desktop = X11Desktop::connect({}, queue);
  if (!desktop) {
    facts.displayProblem = desktop.error().message;
  } else {
    facts.obstacles = desktop.value()->accessibilityTrust().obstacles();
  }
}

void lookAtTheBus(SessionFacts& facts) {
  const auto bus = QDBusConnection::sessionBus();
  facts.hasSessionBus = bus.isConnected();
  const auto has = [&](const char* name) {
    return bus.isConnected() && bus.interface()->isServiceRegistered(QLatin1String(name)).value();
  };
  facts.hasNotificationServer = has("org.freedesktop.Notifications");
  if (!facts.hasNotificationServer && bus.isConnected()) {
    // One that is started when it is first asked.
    facts.hasNotificationServer = bus.interface()->activatableServiceNames().value().contains(
        QLatin1String("org.freedesktop.Notifications"));
  }
  facts.hasAccessibilityBus = has("org.a11y.Bus");
  facts.hasStatusNotifierHost =
      has("org.kde.StatusNotifierWatcher") && QDBusInterface(QStringLiteral("org.kde.StatusNotifierWatcher"),
                                                             QStringLiteral("/StatusNotifierWatcher"),
                                                             QStringLiteral("org.kde.StatusNotifierWatcher"))
                                                  .property("IsStatusNotifierHostRegistered")
                                                  .toBool();
  facts.isRunning = RunningInstance().isThere();
  if (!facts.isRunning) return;
  if (auto obstacles = RunningInstance().obstacles()) facts.obstaclesOfRunning = std::move(obstacles).value();
}

// Programs that keep what was on the clipboard, by the names of their processes.
std::optional<std::string> clipboardHistory() {
  constexpr std::array<std::string_view, 11> kKnown{"clipit",        "parcellite", "diodon",  "copyq",
                                                    "gpaste-daemon", "clipman",    "klipper", "xfce4-clipman",
                                                    "clipmenud",     "greenclip",  "qlipper"};
  std::error_code failure;
  for (const auto& each : fs::directory_iterator("/proc", failure)) {
    if (std::isdigit(static_cast<unsigned char>(each.path().filename().string().front())) == 0) continue;
    std::string name;
    std::getline(std::ifstream(each.path() / "comm"), name);
    if (std::ranges::find(kKnown, name) != kKnown.end()) return name;
  }
  return std::nullopt;
}

// The folder itself, or the nearest one above it, in which it is going to be made.
std::optional<std::string> whyNotWritable(fs::path folder) {
  std::error_code failure;
  while (!fs::exists(folder, failure) && folder.has_relative_path()) folder = folder.parent_path();
  if (access(folder.c_str(), W_OK | X_OK) == 0) return std::nullopt;
  return "The folder " + folder.string() + " cannot be written.";
}

}  // namespace

SessionFacts gatherFacts(const SessionPlaces& places) {
  SessionFacts facts;
  lookAtTheDisplay(places.queue, facts);
  lookAtTheBus(facts);
  facts.clipboardManager = clipboardHistory();
  facts.guardIsInstalled = access((places.programDirectory / "quorlo-keyboard-guard").c_str(), X_OK) == 0;
  facts.abbreviationsEnabled = places.settings.abbreviationsEnabled();
  facts.autoPasteIsEnabled = places.settings.autoPasteIsEnabled();
  facts.showsInTray = places.settings.showAppInMenuBar();
  facts.launchesAtLogin = places.launchAtLogin.isEnabled();
  facts.unwritableFolder = whyNotWritable(places.environment.dataDirectory());
  if (!facts.unwritableFolder) facts.unwritableFolder = whyNotWritable(places.configDirectory);
  const auto library = checkLibrary(places.environment.dataDirectory());
  if (library) {
    facts.snippets = library.value();
    auto found = findDuplicates(places.environment.dataDirectory());
    if (found) {
      facts.duplicates = std::move(found).value();
    } else {
      facts.libraryProblem = found.error().message;
    }
  } else {
    facts.libraryProblem = library.error().message;
  }
  return facts;
}

}  // namespace quorlo
