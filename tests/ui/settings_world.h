#pragma once

#include "app/settings/insertion_settings.h"
#include "app/settings/launch_at_login.h"
#include "app/settings/settings_controller.h"
#include "app/settings/sound_manager.h"
#include "fakes/fake_audio_player.h"
#include "fakes/fake_background_queue.h"
#include "fakes/fake_desktop.h"
#include "fakes/fake_environment.h"
#include "fakes/fake_hot_key_center.h"
#include "fakes/fake_user_defaults.h"
#include "store/context/managed_object_context.h"
#include "store/persistence_controller.h"
#include "ui/settings/settings_pages.h"

#include <QTemporaryDir>

#include <optional>

namespace quorlo {

// What the windows around the settings change and use.
struct SettingsWorld {
  SettingsWorld() {
    environment.data = folder.path().toStdString() + "/data";
    environment.resources = QUORLO_RESOURCES;
    settings.setAccessibilityCheck([this] { return desktop.isProcessTrusted(); });
  }

  QTemporaryDir folder;
  FakeDesktop desktop;
  FakeEnvironment environment;
  FakeUserDefaults defaults;
  FakeAudioPlayer player;
  FakeBackgroundQueue background;
  FakeHotKeyCenter hotKeys;
  std::optional<Shortcut> menuShortcut;
  SettingsController settings{defaults, desktop.queue, [this] { return environment.now(); },
                              [] { return std::nullopt; }};
  SoundManager sound{settings, environment, player, background};
  PersistenceController persistence{desktop.queue, environment};
  ManagedObjectContext& library = persistence.managedObjectContext();
  LaunchAtLogin launchAtLogin{folder.path().toStdString() + "/autostart", "quorlo"};
  InsertionSettings insertion{folder.path().toStdString() + "/config"};
  SettingsServices services{settings,
                            insertion,
                            sound,
                            persistence,
                            desktop,
                            environment,
                            launchAtLogin,
                            hotKeys,
                            desktop,
                            [this] { return menuShortcut; },
                            [this](std::optional<Shortcut> shortcut) { menuShortcut = shortcut; },
                            [] {},
                            [] {},
                            {},
                            [] {}};
};

}  // namespace quorlo
