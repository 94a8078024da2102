#include "ui/settings/delimiter_keys_grid.h"

#include "app/settings/settings_controller.h"
#include "ui/qt_text.h"
#include "ui/settings/settings_page.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>

#include <array>
#include <string_view>
#include <vector>

namespace quorlo {
namespace {

constexpr int kKeyCount = 3;  // space, tab and return, which have words; symbols follow
constexpr int kColumns = 7;

// How a symbol is called, for tool tips and for screen readers, in the order of the members.
constexpr std::array<std::u16string_view, DelimiterKeys::kMemberCount - kKeyCount> kSymbolNames{
    u"Exclamation mark",
    u"Number sign",
    u"Dollar sign",
    u"Percent sign",
    u"Ampersand",
    u"Apostrophe",
    u"Quotation mark",
    u"Asterisk",
    u"Plus sign",
    u"Equals sign",
    u"Comma",
    u"Hyphen",
    u"Underscore",
    u"Full stop",
    u"Colon",
    u"Semicolon",
    u"Question mark",
    u"Less-than sign",
    u"Greater-than sign",
    u"Left parenthesis",
    u"Right parenthesis",
    u"Left square bracket",
    u"Right square bracket",
    u"Left curly bracket",
    u"Right curly bracket",
    u"At sign",
    u"Slash",
    u"Backslash",
};

DelimiterKeys with(DelimiterKeys keys, DelimiterKeys member, bool on) {
  return DelimiterKeys(on ? keys.rawValue() | member.rawValue() : keys.rawValue() & ~member.rawValue());
}

}  // namespace

QWidget* makeDelimiterKeysGrid(SettingsPage& page, SettingsController& settings) {
  const QString title = localizedText(u"Pressing these keys, triggers an abbreviation to expand:");
  auto* const group = new QGroupBox(title);
  auto* const grid = new QGridLayout(group);
  std::vector<QCheckBox*> boxes;
  const auto members = DelimiterKeys::members();
  for (std::size_t i = 0; i < members.size(); ++i) {
    const auto member = members[i];
    const auto shown = member.displayString();
    auto* const box = new QCheckBox(toQString(shown).replace(QLatin1Char('&'), QLatin1String("&&")));
    const auto symbol = static_cast<int>(i) - kKeyCount;
    if (symbol < 0) {
      grid->addWidget(box, 0, static_cast<int>(i) * 2, 1, 2);
    } else {
      box->setAccessibleName(localizedText(kSymbolNames[static_cast<std::size_t>(symbol)]));
      box->setToolTip(box->accessibleName());
      box->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
      grid->addWidget(box, 1 + symbol / kColumns, symbol % kColumns);
    }
    QObject::connect(box, &QCheckBox::clicked, &page, [&settings, member](bool on) {
      settings.setAbbreviationDelimiterKey(with(settings.abbreviationDelimiterKey(), member, on));
    });
    boxes.push_back(box);
  }
  grid->setColumnStretch(kColumns, 1);
  page.follow([boxes, members, &settings] {
    const auto keys = settings.abbreviationDelimiterKey();
    for (std::size_t i = 0; i < members.size(); ++i) boxes[i]->setChecked(keys.contains(members[i]));
  });
  return group;
}

}  // namespace quorlo
