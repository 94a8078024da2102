#include "app/settings/settings_controller.h"
#include "ui/settings/delimiter_keys_grid.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/settings_pages.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QRadioButton>

namespace quorlo {
namespace {

void addTriggerTypes(SettingsPage& page, SettingsController& settings) {
  for (const auto type : kAbbreviationTriggerTypes) {
    auto* const button = new QRadioButton(toQString(displayString(type)));
    page.addWidget(button);
    QObject::connect(button, &QRadioButton::clicked, &page,
                     [&settings, type] { settings.setAbbreviationsTriggerType(type); });
    page.follow([&settings, button, type] {
      if (settings.abbreviationsTriggerType() == type) button->setChecked(true);
    });
  }
}

QDoubleSpinBox* makePartsDelay(SettingsPage& page, SettingsController& settings) {
  auto* const delay = new QDoubleSpinBox;
  delay->setRange(0, kMaxPasteDelay.count());
  delay->setSingleStep(0.05);
  delay->setSuffix(QStringLiteral(" s"));
  delay->setKeyboardTracking(false);  // "0.25" is one change, not four
  QObject::connect(delay, &QDoubleSpinBox::valueChanged, &page, [&settings](double seconds) {
    settings.setPasteBetweenSnippetPartsDelay(Seconds(seconds));
  });
  return delay;
}

}  // namespace

SettingsPage* makeExpansionPage(const SettingsServices& services) {
  auto& settings = services.settings;
  auto* const page = new SettingsPage(settings, u"Expansion");
  page->beginGroup(u"Abbreviations");
  page->addSwitch(u"Expand abbreviations as I type", &SettingsController::abbreviationsEnabled,
                  &SettingsController::setAbbreviationsEnabled,
                  u"Switching this on switches Auto-Paste on, too.");
  page->addSwitch(u"Also expand abbreviations at the end of a word",
                  &SettingsController::expandAbbreviationWithinWord,
                  &SettingsController::setExpandAbbreviationWithinWord);
  page->addSwitch(u"Also while an input method is active",
                  &SettingsController::expandWhileInputMethodIsActive,
                  &SettingsController::setExpandWhileInputMethodIsActive,
                  u"What is typed for Chinese, Japanese or Korean text would expand, too.");

  page->beginGroup(u"What completes an abbreviation");
  addTriggerTypes(*page, settings);
  auto* const keys = makeDelimiterKeysGrid(*page, settings);
  page->addWidget(keys);
  auto* const remove =
      page->addSwitch(u"Remove delimiter after expansion", &SettingsController::removeTriggerKey,
                      &SettingsController::setRemoveTriggerKey);
  page->follow([&settings, keys, remove] {
    const bool hasDelimiters = settings.abbreviationsTriggerType() == AbbreviationTriggerType::delimiterKey;
    keys->setEnabled(hasDelimiters);
    remove->setEnabled(hasDelimiters);
  });

  page->beginGroup(u"Inserting");
  page->addSwitch(
      u"Backspace right after an expansion takes it back", &SettingsController::undoExpansionWithBackspace,
      &SettingsController::setUndoExpansionWithBackspace,
      u"The abbreviation stands there again as you typed it. Snippets with keys, a cursor position, "
      u"pictures or indented lines, and texts of more than 1,000 characters, are left alone.");
  page->addSwitch(
      u"Auto-Paste", &SettingsController::autoPasteIsEnabled, &SettingsController::setAutoPasteIsEnabled,
      u"A snippet chosen in the menu is inserted into the application in front. Otherwise it is put on "
      u"the clipboard.");
  page->addSwitch(u"Notify me when a snippet is only put on the clipboard",
                  &SettingsController::showNotificationForExpension,
                  &SettingsController::setShowNotificationForExpension);
  page->addSwitch(u"Put back what was on the clipboard", &SettingsController::restorePateboardItems,
                  &SettingsController::setRestorePateboardItems);
  auto* const delay = makePartsDelay(*page, settings);
  page->addField(u"Delay between pasting snippet parts:", delay);
  page->follow([&settings, delay] {
    const auto seconds = settings.pasteBetweenSnippetPartsDelay().count();
    const QSignalBlocker quiet(delay);
    if (delay->value() != seconds) delay->setValue(seconds);
  });
  page->addHint(u"Longer if a slow application gets the parts in the wrong order.");
  return page;
}

}  // namespace quorlo
