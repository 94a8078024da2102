#pragma once

#include "platform/shortcut.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorlo {

class Environment;
class HotKeyCenter;
class InsertionSettings;
class KeyboardLayout;
class LaunchAtLogin;
class PersistenceController;
class SettingsController;
class SettingsPage;
class SoundManager;
class Workspace;

// What the pages of the settings window change and use; all of it outlives the window.
struct SettingsServices {
  SettingsController& settings;
  InsertionSettings& insertion;
  SoundManager& sound;
  PersistenceController& persistence;
  Workspace& workspace;
  const Environment& environment;
  LaunchAtLogin& launchAtLogin;
  HotKeyCenter& hotKeys;
  const KeyboardLayout& keyboardLayout;
  // The menu's hot key, which the program has registered; empty for none.
  std::function<std::optional<Shortcut>()> menuShortcut;
  std::function<void(std::optional<Shortcut>)> setMenuShortcut;
  std::function<void()> showWelcome;
  std::function<void()> showBackups;
  std::filesystem::path backupFolder;
  std::function<void()> showAbout;
};

struct ApplicationsPageParts {
  SettingsPage* page;
  std::function<void(const std::string& application)> askForWay;  // lives as long as the page
};

// One file each. The caller owns the page.
SettingsPage* makeGeneralPage(const SettingsServices& services);
SettingsPage* makeExpansionPage(const SettingsServices& services);
ApplicationsPageParts makeApplicationsPage(const SettingsServices& services);
SettingsPage* makeSoundsPage(const SettingsServices& services);
SettingsPage* makeMenuPage(const SettingsServices& services);
SettingsPage* makeHotKeysPage(const SettingsServices& services);
SettingsPage* makeFillInPage(const SettingsServices& services);
SettingsPage* makeEditorPage(const SettingsServices& services);
SettingsPage* makeAdvancedPage(const SettingsServices& services);

}  // namespace quorlo
