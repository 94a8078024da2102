#pragma once

#include "app/settings/launch_at_login.h"
#include "app/shell/menu/navigation_model.h"
#include "app/shell/menu/ql_snippet_status_menu_view_controller.h"
#include "engine/expansion_world.h"
#include "fakes/fake_app_windows.h"
#include "fakes/fake_snippet_menu_view.h"
#include "fakes/fake_status_item.h"
#include "fakes/fake_target_focus.h"

#include <filesystem>
#include <string>

namespace quorlo {

// The whole program on a fake desktop with its menu.
struct ShellWorld : ExpansionWorld {
  ShellWorld() { std::filesystem::remove_all(autostart); }

  const std::filesystem::path autostart =
      std::filesystem::path(testing::TempDir()) /
      (std::string("quorlo-autostart-") + testing::UnitTest::GetInstance()->current_test_info()->name());

  FakeTargetFocus focus{desktop.queue};
  FakeStatusItem statusItem;
  FakeSnippetMenuView view;
  FakeAppWindows windows;
  LaunchAtLogin launchAtLogin{autostart, "quorlo"};
  NavigationModel navigation{windows};
  int terminations = 0;
  QLSnippetStatusMenuViewController menu{{
      .queue = desktop.queue,
      .settings = settings,
      .launchAtLogin = launchAtLogin,
      .persistence = persistence,
      .interpreter = interpreter,
      .paste = paste,
      .generalPasteboard = desktop.pasteboard,
      .application = ownApplication,
      .focus = focus,
      .typedKeys = desktop,
      .statusItem = statusItem,
      .view = view,
      .navigation = navigation,
      .terminate = [this] { ++terminations; },
  }};
};

}  // namespace quorlo
