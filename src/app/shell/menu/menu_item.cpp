#include "app/shell/menu/menu_item.h"

#include "base/localized.h"

#include <iterator>
#include <utility>

namespace quorlo {
namespace {

MenuItem command(std::u16string_view title, std::string_view image, MenuCommand command) {
  return {.kind = MenuItem::Kind::command,
          .tag = kFixedItemTag,
          .title = localized(title),
          .image = image,
          .command = command};
}

MenuItem toggle(std::u16string_view title, std::string_view image, MenuCommand action, bool isOn) {
  auto item = command(title, image, action);
  item.hasCheckMark = isOn;
  return item;
}

std::vector<MenuItem> settingsItems(const MenuToggles& toggles) {
  std::vector<MenuItem> items{
      toggle(u"Auto-Paste", "doc.on.clipboard", MenuCommand::toggleAutoPasteStatus, toggles.autoPaste),
      toggle(u"Abbreviations", "keyboard", MenuCommand::toggleAbbreviationsStatus, toggles.abbreviations),
      toggle(u"Launch at login", "", MenuCommand::toggleLaunchAtLoginStatus, toggles.launchAtLogin)};
  if (toggles.showInMenuBar) {
    items.push_back(toggle(u"Show app in menu bar", "Statusbar_Quorlo", MenuCommand::toggleShowInMenu,
                           *toggles.showInMenuBar));
  }
  return items;
}

MenuItem separator() {
  return {.kind = MenuItem::Kind::separator, .tag = kFixedItemTag};
}

void append(std::vector<MenuItem>& to, std::vector<MenuItem> items) {
  to.insert(to.end(), std::make_move_iterator(items.begin()), std::make_move_iterator(items.end()));
}

}  // namespace

std::vector<MenuItem> fixedMenuItems(const MenuToggles& toggles) {
  auto settings = command(u"Settings", "gearshape", MenuCommand::showSettingsWindow);
  settings.submenu = settingsItems(toggles);
  return {command(u"Snippet Editor", "macwindow", MenuCommand::showSnippetEditorWindow), settings,
          command(u"Quit Quorlo", "door.left.hand.open", MenuCommand::closeSheetsAndTerminate), separator()};
}

std::vector<MenuItem> snippetMenuItems(const std::vector<SnippetMenuGroup>& groups) {
  if (groups.empty()) {
    return {{.kind = MenuItem::Kind::noResults, .tag = kNoResultsTag, .title = localized(u"No results")}};
  }
  std::vector<MenuItem> items;
  for (const auto& group : groups) {
    items.push_back({.kind = MenuItem::Kind::header, .title = group.title});
    for (const auto& snippet : group.snippets) {
      items.push_back({.kind = MenuItem::Kind::snippet, .title = snippet.title, .snippet = snippet});
    }
  }
  return items;
}

std::vector<MenuItem> menuItems(MenuPlace place, std::vector<MenuItem> fixedItems,
                                std::vector<MenuItem> snippetItems) {
  std::vector<MenuItem> items{{.kind = MenuItem::Kind::search}};
  if (place == MenuPlace::statusItem) {
    append(items, std::move(fixedItems));
    append(items, std::move(snippetItems));
  } else {
    append(items, std::move(snippetItems));
    items.push_back(std::move(fixedItems.back()));
    fixedItems.pop_back();
    append(items, std::move(fixedItems));
  }
  return items;
}

}  // namespace quorlo
