#pragma once

#include "app/shell/menu/menu_item.h"
#include "base/life_token.h"
#include "base/subscription.h"
#include "platform/key_codes.h"
#include "platform/main_queue.h"
#include "platform/typed_keys_hold.h"
#include "store/context/entity.h"
#include "store/context/fetch_request.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

class LaunchAtLogin;
class ManagedObjectContext;
class NavigationModel;
class OwnApplication;
class PasteController;
class Pasteboard;
class PersistenceController;
class QLCategory;
class QLSnippet;
class QLSnippetMacroInterpreter;
class SettingsController;
class SnippetMenuView;
class StatusItem;
class TargetFocus;
enum class Setting;

// The one menu of the program: snippets grouped by folder, found by a search field, and the commands. It
// opens at the status item or, by a hot key, at the pointer. A chosen snippet goes into the window that
// the user came from. One instance; main thread.
class QLSnippetStatusMenuViewController {
 public:
  struct Dependencies {
    MainQueue& queue;
    SettingsController& settings;
    LaunchAtLogin& launchAtLogin;
    PersistenceController& persistence;
    const QLSnippetMacroInterpreter& interpreter;
    PasteController& paste;
    Pasteboard& generalPasteboard;
    OwnApplication& application;
    TargetFocus& focus;
    TypedKeysHold& typedKeys;
    StatusItem& statusItem;
    SnippetMenuView& view;
    NavigationModel& navigation;
    std::function<void()> terminate;  // as the user wishes it, with everything that is asked before
  };

  // The references must outlive the controller. The status item is shown according to the settings.
  explicit QLSnippetStatusMenuViewController(const Dependencies& dependencies);
  QLSnippetStatusMenuViewController(const QLSnippetStatusMenuViewController&) = delete;
  QLSnippetStatusMenuViewController& operator=(const QLSnippetStatusMenuViewController&) = delete;

  // By a hot key: opens the menu at the pointer 0.05 s later, limited to the folder's snippets where one is
  // given. Closes the menu where it is open like that already.
  void activateAndPopUpSnippetMenu(std::shared_ptr<QLCategory> category = nullptr);
  // At the pointer, at once.
  void popUpSnippetMenu();
  // A click on the status item; one that has just closed the open menu does nothing more.
  void openAtStatusItem();
  bool isOpen() const { return isOpen_; }
  // The focus goes back to the window that the user came from.
  void close();

  const std::u16string& searchString() const { return searchString_; }
  // Runs the search; the first result is highlighted.
  void setSearchString(std::u16string searchString);
  const std::vector<SortDescriptor>& snippetsSortDescriptors() const { return snippetsSortDescriptors_; }
  // The folder to which the open menu is limited; null for none. Cleared when the menu closes.
  const std::shared_ptr<QLCategory>& filteredCategory() const { return filteredCategory_; }

  // Does nothing for a snippet that is gone. Into the window that the user came from; into the editor where
  // that is visible or kOption or kCommand is held.
  void choose(ObjectID snippet, ModifierFlags flags);
  // Its text as it would be inserted, fields at their defaults. Nothing is pasted, and the menu closes.
  void copySelectedSnippetToPasteboard(ObjectID snippet);
  void perform(MenuCommand command);

  // Shows for a moment that a snippet is inserted or copied.
  void blink();

 private:
  void open(MenuPlace place);
  void menuDidClose();
  void closeView();
  void closeAndGiveBack();
  void rebuild();
  void rebuildStatusMenu();
  MenuToggles toggles() const;
  std::vector<MenuItem> items() const;
  std::shared_ptr<QLSnippet> snippet(ObjectID id) const;
  void pasteIntoTarget(std::shared_ptr<QLSnippet> snippet);
  void paste(const std::shared_ptr<QLSnippet>& snippet);
  void copy(const QLSnippet& snippet);
  void toggleLaunchAtLoginStatus();
  void settingDidChange(Setting changed);

  Dependencies use_;
  ManagedObjectContext& managedObjectContext;
  std::u16string searchString_;
  std::vector<SortDescriptor> snippetsSortDescriptors_;
  std::shared_ptr<QLCategory> filteredCategory_;
  bool shouldHighLightOrUnhighlight = false;
  MenuPlace place_ = MenuPlace::pointer;
  bool isOpen_ = false;
  bool isAboutToOpen_ = false;
  std::optional<MainQueue::Instant> closedItself_;
  bool offersToShowInMenuBar_ = false;
  std::unique_ptr<TypedKeysHold::Hold> hold_;
  Subscription settingsObservation_;
  Subscription launchAtLoginObservation_;
  Subscription insertions_;
  LifeToken life_;
};

}  // namespace quorlo
