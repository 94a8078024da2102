#include "app/settings/settings_controller.h"
#include "store/snippet_type.h"
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
  page->addSwitch(u"Hide the button that adds an abbreviation",
                  &SettingsController::hideAbbreviationAddButton,
                  &SettingsController::setHideAbbreviationAddButton);

  page->beginGroup(u"Text");
  page->addSwitch(u"Show the format bar for formatted text", &SettingsController::showFormatInspector,
                  &SettingsController::setShowFormatInspector);
  page->addSwitch(u"Show the preview next to the text", &SettingsController::showPreviewNextToEditorText,
                  &SettingsController::setShowPreviewNextToEditorText);

  page->beginGroup(u"Macros");
  page->addSwitch(u"Mark macros with a symbol", &SettingsController::showSymbolNextToMacro,
                  &SettingsController::setShowSymbolNextToMacro);
  page->addSwitch(u"Open the settings of a macro after inserting it",
                  &SettingsController::openMacroSettingsAfterInsert,
                  &SettingsController::setOpenMacroSettingsAfterInsert);
  page->addSwitch(u"Show what macros give in their place",
                  &SettingsController::showMacroReplacementPreviewInSnippetEditor,
                  &SettingsController::setShowMacroReplacementPreviewInSnippetEditor);
  return page;
}

}  // namespace quorlo
