#pragma once

#include "app/shell/menu/snippet_search.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// What the fixed items of the menu do.
enum class MenuCommand {
  showSnippetEditorWindow,
  showSettingsWindow,
  closeSheetsAndTerminate,
  toggleAutoPasteStatus,
  toggleAbbreviationsStatus,
  toggleLaunchAtLoginStatus,
  toggleShowInMenu,
};

inline constexpr int kSnippetItemTag = 0;
inline constexpr int kFixedItemTag = 8;
inline constexpr int kNoResultsTag = -1;

// One row of the snippet menu. Headers, separators and "No results" are disabled: they are neither
// highlighted nor chosen.
struct MenuItem {
  enum class Kind {
    search,   // the row with the search field
    header,   // the title of a group
    snippet,  // `snippet` is set
    noResults,
    command,  // `command` is set
    separator,
  };

  Kind kind = Kind::separator;
  int tag = kSnippetItemTag;
  std::u16string title = {};
  std::string_view image = {};  // the name of a symbol; empty for none
  std::optional<MenuCommand> command = std::nullopt;
  bool hasCheckMark = false;
  std::vector<MenuItem> submenu = {};
  std::optional<SnippetMenuEntry> snippet = std::nullopt;

  bool isEnabled() const { return kind == Kind::snippet || kind == Kind::command || kind == Kind::search; }
  bool operator==(const MenuItem&) const = default;
};

// The states that the check marks show.
struct MenuToggles {
  bool autoPaste = false;
  bool abbreviations = false;
  bool launchAtLogin = false;
  std::optional<bool> showInMenuBar = std::nullopt;  // without a value the item is left out
};

// The items that every menu has, in their order; a separator is the last.
std::vector<MenuItem> fixedMenuItems(const MenuToggles& toggles);

// One disabled header for each group, followed by its snippets; "No results" where there is no group.
std::vector<MenuItem> snippetMenuItems(const std::vector<SnippetMenuGroup>& groups);

// Where the menu opens.
enum class MenuPlace { pointer, statusItem };

// The whole menu: the search field comes first, then the fixed items where the mouse opened the menu, while
// at the pointer they come last, so that the results are next to the search field.
std::vector<MenuItem> menuItems(MenuPlace place, std::vector<MenuItem> fixedItems,
                                std::vector<MenuItem> snippetItems);

}  // namespace quorlo
