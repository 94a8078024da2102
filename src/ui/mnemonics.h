#pragma once

#include <QChar>
#include <QSet>
#include <QString>

class QWidget;

namespace quorlo {

// The text with an ampersand before the letter that becomes its mnemonic: the first letter of a word that
// is not in `taken` yet, else any such letter, else none. `taken` grows by the letter, in lower case.
QString withMnemonic(const QString& text, QSet<QChar>& taken);

// Gives the buttons inside the widget, and the labels that name a field, mnemonics of their own, so that
// texts need none in any language. A text that has an ampersand keeps it; a button with an accessible name
// of its own shows something else than its name and gets none.
void assignMnemonics(QWidget& widget);

}  // namespace quorlo
