#include "ui/mnemonics.h"

#include <QAbstractButton>
#include <QLabel>
#include <QWidget>

#include <array>

namespace quorlo {

QString withMnemonic(const QString& text, QSet<QChar>& taken) {
  // A key for every letter: those that no keyboard types by one key are left out.
  const auto isFree = [&](QChar c) {
    return c.isLetter() && c.unicode() < 0x250 && !taken.contains(c.toLower());
  };
  const auto startsWord = [&](qsizetype i) { return i == 0 || !text.at(i - 1).isLetterOrNumber(); };
  for (const bool onlyFirstLetters : {true, false}) {
    for (qsizetype i = 0; i < text.size(); ++i) {
      if (!isFree(text.at(i)) || (onlyFirstLetters && !startsWord(i))) continue;
      taken.insert(text.at(i).toLower());
      return QString(text).insert(i, QLatin1Char('&'));
    }
  }
  return text;
}

void assignMnemonics(QWidget& widget) {
  QSet<QChar> taken;
  for (auto* const child : widget.findChildren<QWidget*>()) {
    auto* const button = qobject_cast<QAbstractButton*>(child);
    auto* const label = qobject_cast<QLabel*>(child);
    const QString text = button ? button->text() : label && label->buddy() ? label->text() : QString();
    if (text.size() < 2 || text.contains(QLatin1Char('&'))) continue;
    if (button) button->setText(withMnemonic(text, taken));
    if (label) label->setText(withMnemonic(text, taken));
  }
}

}  // namespace quorlo
