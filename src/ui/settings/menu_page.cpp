#include "app/settings/settings_controller.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/settings_pages.h"

namespace quorlo {
namespace {

SearchScopes with(SearchScopes scopes, SearchScopes member, bool on) {
  return SearchScopes(on ? scopes.rawValue() | member.rawValue() : scopes.rawValue() & ~member.rawValue());
}

}  // namespace

SettingsPage* makeMenuPage(const SettingsServices& services) {
  auto& settings = services.settings;
  auto* const page = new SettingsPage(settings, u"Menu and Search");
  page->beginGroup(u"The search looks in");
  for (const auto scope : SearchScopes::members()) {
    page->addSwitch(
        scope == kTitleScope          ? u"Title"
        : scope == kAbbreviationScope ? u"Abbreviation"
                                      : u"Text",
        [&settings, scope] { return settings.searchScopes().contains(scope); },
        [&settings, scope](bool on) { settings.setSearchScopes(with(settings.searchScopes(), scope, on)); });
  }
  page->addHint(u"With none of them, the menu lists all snippets whatever you type.");

  page->beginGroup(u"Order of snippets");
  page->addChoice(u"Sort by:", kSnippetSortOptions, displayString, &SettingsController::snippetsSortOption,
                  &SettingsController::setSnippetsSortOption);
  page->addSwitch(u"Ascending", &SettingsController::ascendingSnippetSortation,
                  &SettingsController::setAscendingSnippetSortation);
  return page;
}

}  // namespace quorlo
