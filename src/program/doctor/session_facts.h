#pragma once

#include "program/doctor/diagnosis.h"

#include <filesystem>

namespace quorlo {

class Environment;
class LaunchAtLogin;
class MainQueue;
class SettingsController;

// Where to look.
struct SessionPlaces {
  const Environment& environment;
  const SettingsController& settings;
  const LaunchAtLogin& launchAtLogin;
  MainQueue& queue;
  std::filesystem::path configDirectory;
  std::filesystem::path programDirectory;
};

// Looks at the session, the settings and the library, changing nothing. Takes a moment. Needs a
// QCoreApplication; main thread.
SessionFacts gatherFacts(const SessionPlaces& places);

// `quorlo doctor`: prints what is found; 0 when nothing keeps Quorlo from working, else 1.
int runDoctor(bool json);

}  // namespace quorlo
