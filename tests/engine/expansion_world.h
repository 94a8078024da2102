#pragma once

#include "app/settings/settings_controller.h"
#include "app/settings/sound_manager.h"
#include "engine/abbreviations_monitor.h"
#include "engine/accessibility_manager.h"
#include "engine/expansion_undo.h"
#include "engine/paste/macro_preparation.h"
#include "engine/paste/paste_controller.h"
#include "fakes/fake_alerts.h"
#include "fakes/fake_audio_player.h"
#include "fakes/fake_background_queue.h"
#include "fakes/fake_desktop.h"
#include "fakes/fake_environment.h"
#include "fakes/fake_fill_in_prompt.h"
#include "fakes/fake_own_application.h"
#include "fakes/fake_user_defaults.h"
#include "fakes/fake_user_notifications.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "store/context/managed_object_context.h"
#include "store/fake_record_store.h"
#include "store/persistence_controller.h"
#include "store/records/folder_types.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/records/ql_user.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {

// The whole program on a fake desktop, with abbreviations on.
struct ExpansionWorld : testing::Test {
  ExpansionWorld() {
    settings.setAccessibilityCheck(
        [this] { return accessibility.checkAccessibility(AccessibilityManager::Prompt::showAlert); });
    settings.setPlaySound(false);
    settings.setAbbreviationsEnabled(true);
    desktop.queue.settle();
  }

  std::shared_ptr<QLSnippet> add(std::u16string abbreviation, std::u16string text) {
    auto snippet = context.insert<QLSnippet>();
    snippet->setText(AttributedString(std::move(text)));
    snippet->setAbbreviation(std::move(abbreviation));
    return snippet;
  }

  std::shared_ptr<QLCategory> addFolder(ExpansionBehavior behavior, QLSnippet& snippet) {
    auto folder = context.insert<QLCategory>();
    folder->setExpansionBehavior(static_cast<std::int64_t>(behavior));
    snippet.setCategory(folder.get());
    return folder;
  }

  std::shared_ptr<QLApp> addApp(const std::string& bundleID, AppType type) {
    auto app = context.insert<QLApp>();
    app->setBundleID(bundleID);
    app->setType(static_cast<std::int64_t>(type));
    return app;
  }

  void useLastSymbol() { settings.setAbbreviationsTriggerType(AbbreviationTriggerType::lastSymbol); }

  FakeDesktop desktop;
  FakeUserDefaults defaults;
  FakeEnvironment environment;
  FakeAlerts alerts;
  FakeAudioPlayer player;
  FakeBackgroundQueue background;
  FakeOwnApplication ownApplication;
  FakeUserNotifications notifications;

  SettingsController settings{defaults, desktop.queue, [this] { return environment.now(); },
                              [] { return std::nullopt; }};
  std::vector<ChangeSet> commits;
  Status commitResult;
  PersistenceController persistence{
      desktop.queue, environment, {.store = std::make_unique<FakeRecordStore>(commits, commitResult)}};
  ManagedObjectContext& context = persistence.managedObjectContext();
  QLSnippetMacroInterpreter interpreter{
      environment, [this](const std::u16string& abbreviation) -> std::optional<AttributedString> {
        const auto snippet = persistence.snippetForAbbreviation(abbreviation);
        if (!snippet) return std::nullopt;
        return snippet->text();
      }};
  FakeFillInPrompt prompt{desktop.queue};
  MacroPreparation preparation{interpreter, prompt};
  SoundManager sound{settings, environment, player, background};
  AccessibilityManager accessibility{desktop, settings, desktop, alerts, desktop.queue, QuotationMarks{}};
  PasteController paste{{desktop.queue, desktop.pasteboard, desktop, desktop, desktop, desktop, desktop,
                         desktop, ownApplication, notifications, settings, sound, preparation}};
  ExpansionUndo undo{{desktop.queue, desktop, desktop, desktop, desktop, desktop, key::kBackspace}};
  AbbreviationsMonitor monitor{{desktop.queue, desktop, desktop, desktop, desktop, settings, accessibility,
                                persistence, context, desktop, paste, undo}};
};

}  // namespace quorlo
