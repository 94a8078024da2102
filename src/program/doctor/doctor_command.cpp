#include "app/settings/launch_at_login.h"
#include "app/settings/settings_controller.h"
#include "platform/environment/system_environment.h"
#include "program/doctor/session_facts.h"
#include "ui/desktop/file_user_defaults.h"
#include "ui/desktop/qt_main_queue.h"

#include <QCoreApplication>

#include <algorithm>
#include <iostream>
#include <optional>

namespace quorlo {

int runDoctor(bool json) {
  QtMainQueue queue;
  const std::filesystem::path programDirectory = QCoreApplication::applicationDirPath().toStdString();
  const SystemEnvironment environment{programDirectory};
  FileUserDefaults defaults(environment.configDirectory());
  const SettingsController settings(
      defaults, queue, [&] { return environment.now(); }, [] { return std::nullopt; });
  const LaunchAtLogin launchAtLogin(environment.configDirectory().parent_path() / "autostart",
                                    programDirectory / "quorlo");
  const auto findings = diagnose(gatherFacts(
      {environment, settings, launchAtLogin, queue, environment.configDirectory(), programDirectory}));
  std::cout << (json ? jsonReport(findings) : report(findings));
  return std::ranges::any_of(findings,
                             [](const Finding& each) { return each.level == Finding::Level::problem; });
}

}  // namespace quorlo
