#include "app/shell/menu/ql_snippet_status_menu_view_controller.h"

#include "app/settings/launch_at_login.h"
#include "app/settings/settings_controller.h"
#include "app/shell/menu/copied_snippet.h"
#include "app/shell/menu/navigation_model.h"
#include "app/shell/menu/snippet_menu_view.h"
#include "app/shell/menu/status_item_menu.h"
#include "base/log.h"
#include "engine/paste/paste_controller.h"
#include "platform/own_application.h"
#include "platform/status_item.h"
#include "platform/target_focus.h"
#include "platform/typed_keys_hold.h"
#include "store/context/managed_object_context.h"
#include "store/persistence_controller.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/use_recorder.h"

#include <utility>

namespace quorlo {
namespace {

constexpr Seconds kActivationDelay{0.05};
constexpr Seconds kBlinkDuration{0.2};
constexpr Seconds kSameClick{0.3};

}  // namespace

QLSnippetStatusMenuViewController::QLSnippetStatusMenuViewController(const Dependencies& dependencies)
    : use_(dependencies), managedObjectContext(use_.persistence.managedObjectContext()) {
  use_.view.setEvents({
      .searchStringDidChange = [this](const std::u16string& text) { setSearchString(text); },
      .chooseSnippet = [this](ObjectID id, ModifierFlags flags) { choose(id, flags); },
      .copySnippet = [this](ObjectID id) { copySelectedSnippetToPasteboard(id); },
      .perform = [this](MenuCommand command) { perform(command); },
      .cancel = [this] { close(); },
      .menuDidClose =
          [this] {
            closedItself_ = use_.queue.now();
            menuDidClose();
          },
  });
  use_.statusItem.setClickHandler([this] { openAtStatusItem(); });
  settingsObservation_ = use_.settings.observe([this](Setting changed) { settingDidChange(changed); });
  launchAtLoginObservation_ = use_.launchAtLogin.observe([this] { rebuildStatusMenu(); });
  insertions_ = use_.paste.observeInsertions([this] { blink(); });
  settingDidChange(Setting::snippetsSortOption);
  settingDidChange(Setting::showAppInMenuBar);
}

void QLSnippetStatusMenuViewController::activateAndPopUpSnippetMenu(std::shared_ptr<QLCategory> category) {
  if (isOpen_ && category == filteredCategory_) return close();
  if (std::exchange(isAboutToOpen_, true)) return;
  // What the user goes on typing is meant for the search field.
  hold_ = use_.typedKeys.begin();
  use_.queue.runAfter(kActivationDelay, life_.guard([this, category = std::move(category)] {
    isAboutToOpen_ = false;
    filteredCategory_ = category;
    popUpSnippetMenu();
  }));
}

void QLSnippetStatusMenuViewController::popUpSnippetMenu() {
  open(MenuPlace::pointer);
}

void QLSnippetStatusMenuViewController::openAtStatusItem() {
  if (isOpen_) return close();
  if (closedItself_ && use_.queue.now() - *closedItself_ < kSameClick) return;
  open(MenuPlace::statusItem);
}

void QLSnippetStatusMenuViewController::open(MenuPlace place) {
  if (!std::exchange(isOpen_, true)) {
    use_.focus.remember();
    // Hiding the item of the tray is for the settings; here it can be called back.
    offersToShowInMenuBar_ = !use_.settings.showAppInMenuBar();
  }
  place_ = place;
  searchString_.clear();
  // Where the mouse opened the menu, it will choose.
  shouldHighLightOrUnhighlight = place == MenuPlace::pointer;
  use_.view.open(place, items());
  if (shouldHighLightOrUnhighlight) use_.view.highlightFirstResult();
  use_.focus.take(use_.view.nativeWindow());
  use_.view.makeSearchFieldFirstResponder();
  // Once the menu is on the screen, before the user types.
  use_.queue.run(life_.guard([this] { managedObjectContext.prepareSearch(); }));
}

void QLSnippetStatusMenuViewController::close() {
  if (isOpen_) closeAndGiveBack();
}

void QLSnippetStatusMenuViewController::menuDidClose() {
  isOpen_ = false;
  filteredCategory_ = nullptr;
  searchString_.clear();
  hold_.reset();
}

void QLSnippetStatusMenuViewController::closeView() {
  use_.view.close();
  menuDidClose();
}

void QLSnippetStatusMenuViewController::closeAndGiveBack() {
  closeView();
  use_.focus.giveBack([](bool) {});
}

void QLSnippetStatusMenuViewController::setSearchString(std::u16string searchString) {
  searchString_ = std::move(searchString);
  shouldHighLightOrUnhighlight = true;
  rebuild();
}

void QLSnippetStatusMenuViewController::rebuild() {
  if (!isOpen_) return;
  use_.view.setItems(items());
  if (shouldHighLightOrUnhighlight) use_.view.highlightFirstResult();
}

MenuToggles QLSnippetStatusMenuViewController::toggles() const {
  MenuToggles toggles{use_.settings.autoPasteIsEnabled(), use_.settings.abbreviationsEnabled(),
                      use_.launchAtLogin.isEnabled()};
  if (offersToShowInMenuBar_) toggles.showInMenuBar = use_.settings.showAppInMenuBar();
  return toggles;
}

std::vector<MenuItem> QLSnippetStatusMenuViewController::items() const {
  const auto found = findSnippets(managedObjectContext, {searchString_, use_.settings.searchScopes(),
                                                         filteredCategory_, snippetsSortDescriptors_});
  return menuItems(place_, fixedMenuItems(toggles()), snippetMenuItems(groupByFolder(found)));
}

std::shared_ptr<QLSnippet> QLSnippetStatusMenuViewController::snippet(ObjectID id) const {
  return id.entity == Entity::snippet ? std::static_pointer_cast<QLSnippet>(managedObjectContext.object(id))
                                      : nullptr;
}

void QLSnippetStatusMenuViewController::choose(ObjectID id, ModifierFlags flags) {
  const auto chosen = snippet(id);
  if (!chosen) return;
  const bool isForEditor = (flags & (modifier::kOption | modifier::kCommand)) != 0;
  if (isForEditor || use_.navigation.snippetEditorIsVisible()) {
    closeView();
    use_.navigation.showInSnippetEditor(chosen);
    return;
  }
  use_.paste.hideOwnWindows();
  use_.application.setActivationPolicy(ActivationPolicy::accessory);
  closeView();
  pasteIntoTarget(chosen);
}

// Keys that the user types from here on wait until the snippet is there; the insertion takes over the hold.
void QLSnippetStatusMenuViewController::pasteIntoTarget(std::shared_ptr<QLSnippet> chosen) {
  hold_ = use_.typedKeys.begin();
  use_.focus.giveToTarget(life_.guard([this, chosen = std::move(chosen)](bool isActive) {
    const auto hold = std::move(hold_);
    if (isActive) return paste(chosen);
    logWarning(
        "WARNING: #mN4gone - The window that the snippet was meant for is gone; it is on the clipboard.");
    copy(*chosen);
    use_.application.unhide();
  }));
}

void QLSnippetStatusMenuViewController::paste(const std::shared_ptr<QLSnippet>& chosen) {
  use_.paste.pasteSnippet(chosen->text(), chosen, {},
                          [&persistence = use_.persistence, chosen](std::size_t inserted) {
                            recordUse(persistence, *chosen, static_cast<std::int64_t>(inserted), 0);
                          });
}

void QLSnippetStatusMenuViewController::copySelectedSnippetToPasteboard(ObjectID id) {
  const auto selected = snippet(id);
  if (!selected) return;
  close();
  copy(*selected);
}

void QLSnippetStatusMenuViewController::copy(const QLSnippet& copied) {
  use_.generalPasteboard.setContents(copiedSnippet(copied, use_.interpreter));
  blink();
}

void QLSnippetStatusMenuViewController::perform(MenuCommand command) {
  const bool opensWindow =
      command == MenuCommand::showSnippetEditorWindow || command == MenuCommand::showSettingsWindow;
  if (isOpen_ && opensWindow) {
    closeView();
  } else {
    close();
  }
  switch (command) {
    case MenuCommand::showSnippetEditorWindow:
      return use_.navigation.showSnippetEditor();
    case MenuCommand::showSettingsWindow:
      return use_.navigation.showSettings();
    case MenuCommand::closeSheetsAndTerminate:
      use_.navigation.closeSheets();
      return use_.terminate();
    case MenuCommand::toggleAutoPasteStatus:
      return use_.settings.setAutoPasteIsEnabled(!use_.settings.autoPasteIsEnabled());
    case MenuCommand::toggleAbbreviationsStatus:
      return use_.settings.setAbbreviationsEnabled(!use_.settings.abbreviationsEnabled());
    case MenuCommand::toggleLaunchAtLoginStatus:
      return toggleLaunchAtLoginStatus();
    case MenuCommand::toggleShowInMenu:
      return use_.settings.setShowAppInMenuBar(!use_.settings.showAppInMenuBar());
  }
}

void QLSnippetStatusMenuViewController::toggleLaunchAtLoginStatus() {
  const auto status = use_.launchAtLogin.setEnabled(!use_.launchAtLogin.isEnabled());
  if (!status) logError("ERROR: #lAl4tog - " + status.error().message);
}

void QLSnippetStatusMenuViewController::blink() {
  use_.statusItem.setImage(StatusImage::hollowed);
  use_.queue.runAfter(kBlinkDuration,
                      life_.guard([this] { use_.statusItem.setImage(StatusImage::regular); }));
}

void QLSnippetStatusMenuViewController::settingDidChange(Setting changed) {
  switch (changed) {
    case Setting::snippetsSortOption:
    case Setting::ascendingSnippetSortation:
      snippetsSortDescriptors_ = use_.settings.sortDescriptorsFor(use_.settings.snippetsSortOption());
      return rebuild();
    case Setting::searchScopes:
      return rebuild();
    case Setting::showAppInMenuBar:
      use_.statusItem.setVisible(use_.settings.showAppInMenuBar());
      return rebuildStatusMenu();
    case Setting::autoPasteIsEnabled:
    case Setting::abbreviationsEnabled:
      return rebuildStatusMenu();
    default:
      return;
  }
}

void QLSnippetStatusMenuViewController::rebuildStatusMenu() {
  use_.statusItem.setMenu(statusItemMenu(
      toggles(), [this] { openAtStatusItem(); }, [this](MenuCommand command) { perform(command); }));
  rebuild();
}

}  // namespace quorlo
