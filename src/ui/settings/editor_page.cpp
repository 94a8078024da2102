#include "app/settings/settings_controller.h"
#include "store/records/snippet_type.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/settings_pages.h"

#include <array>

namespace quorlo {
namespace {

// A new snippet begins with text.
constexpr std::array kFormats{SnippetType::plainText, SnippetType::formatted, SnippetType::code};

}  // namespace

SettingsPage* makeEditorPage(const SettingsServices& services) {
  auto& settings = services.settings;
  auto* const page = new SettingsPage(settings, u"Snippet Editor");
  page->beginGroup(u"New snippets");
  page->addChoice(u"Format:", kFormats, displayName, &SettingsController::defaultSnippetFormat,
                  &SettingsController::setDefaultSnippetFormat);

  page->beginGroup(u"Views");
  page->addSwitch(u"Show how often a snippet was used", &SettingsController::showSnippetUseCount,
                  &SettingsController::setShowSnippetUseCount);
  page->addSwitch(u"Show the format bar for formatted text", &SettingsController::showFormatInspector,
                  &SettingsController::setShowFormatInspector);
  return page;
}

}  // namespace quorlo
