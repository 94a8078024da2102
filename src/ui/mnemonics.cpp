#include "ui/mnemonics.h"

#include <QAbstractButton>
#include <QLabel>
#include <QList>
#include <QWidget>

namespace quorlo {
namespace {

QString textNamingControl(const QWidget& widget) {
  if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) {
    return button->accessibleName().isEmpty() ? button->text() : QString();
  }
  const auto* const label = qobject_cast<const QLabel*>(&widget);
  return label && label->buddy() ? label->text() : QString();
}

}  // namespace

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
  QList<QWidget*> named;
  for (auto* const child : widget.findChildren<QWidget*>()) {
    const QString text = textNamingControl(*child);
    const auto mark = text.indexOf(QLatin1Char('&'));
    if (mark >= 0 && mark + 1 < text.size()) taken.insert(text.at(mark + 1).toLower());
    if (mark < 0 && text.size() > 1) named << child;
  }
  for (auto* const child : named) {
    const QString text = withMnemonic(textNamingControl(*child), taken);
    if (auto* const button = qobject_cast<QAbstractButton*>(child)) button->setText(text);
    if (auto* const label = qobject_cast<QLabel*>(child)) label->setText(text);
  }
}

}  // namespace quorlo
