#include "app/settings/settings_controller.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/settings_pages.h"

#include <QCheckBox>

namespace quorlo {

SettingsPage* makeFillInPage(const SettingsServices& services) {
  auto& settings = services.settings;
  auto* const page = new SettingsPage(settings, u"Fill-in Window");
  page->beginGroup(u"Preview");
  page->addSwitch(u"Show a preview of the text",
                  &SettingsController::showMacroReplacementPreviewInReplacementView,
                  &SettingsController::setShowMacroReplacementPreviewInReplacementView);
  auto* const all = page->addSwitch(u"Show the values of all macros, not only of the fields",
                                    &SettingsController::showAllMacrosInPreview,
                                    &SettingsController::setShowAllMacrosInPreview);
  auto* const clipboard = page->addSwitch(u"Show what is on the clipboard",
                                          &SettingsController::showClipboardContentInReplacementView,
                                          &SettingsController::setShowClipboardContentInReplacementView);
  page->follow([&settings, all, clipboard] {
    for (auto* const each : {all, clipboard}) {
      each->setEnabled(settings.showMacroReplacementPreviewInReplacementView());
    }
  });

  page->beginGroup(u"Window");
  page->addChoice(u"The window opens:", kPreviewWindowPositions, displayString,
                  &SettingsController::previewWindowPosition, &SettingsController::setPreviewWindowPosition);
  page->addSwitch(u"Let the background shine through", &SettingsController::useTransparentBacgroundForPreview,
                  &SettingsController::setUseTransparentBacgroundForPreview);
  return page;
}

}  // namespace quorlo
