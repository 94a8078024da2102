#include "ui/welcome/try_out_edit.h"

#include "app/settings/settings_controller.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "store/records/ql_snippet.h"
#include "ui/qt_text.h"

#include <QKeyEvent>
#include <QTextBlock>
#include <QTextCursor>

#include <utility>

namespace quorlo {
namespace {

// What was typed since the last space, in the line of the caret.
QString typedBefore(const QTextCursor& caret) {
  const QString line = caret.block().text().left(caret.positionInBlock());
  const auto space = line.lastIndexOf(QLatin1Char(' '));
  return line.mid(space + 1);
}

}  // namespace

TryOutEdit::TryOutEdit(const SettingsController& settings, const QLSnippetMacroInterpreter& interpreter,
                       FindSnippet find)
    : settings_(settings), interpreter_(interpreter), find_(std::move(find)) {
  setTabChangesFocus(true);
}

void TryOutEdit::keyPressEvent(QKeyEvent* event) {
  const auto trigger = settings_.abbreviationsTriggerType();
  const bool isCommand = event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  const bool typesText = !isCommand && !event->text().isEmpty() && event->key() != Qt::Key_Backspace;
  if (trigger == AbbreviationTriggerType::delimiterKey && typesText &&
      settings_.activeAbbreviationKeyStrings().contains(event->text().toStdU16String()) &&
      expand(event->text())) {
    return;
  }
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (isReturn) return event->ignore();  // leads on
  QPlainTextEdit::keyPressEvent(event);
  if (trigger == AbbreviationTriggerType::lastSymbol && typesText) expand({});
}

bool TryOutEdit::expand(const QString& delimiter) {
  auto caret = textCursor();
  const auto typed = typedBefore(caret).toStdU16String();
  const auto match = find_(typed);
  if (!match.snippet) return false;
  auto content = interpreter_.resolveSnippetMacros(match.snippet->text(), match.snippet->abbreviation());
  if (!settings_.removeTriggerKey()) content.append(delimiter.toStdU16String());
  const auto evaluated = interpreter_.evaluate(content, kAllMacroTypes, {}, AttributedString());

  const int start = caret.position() - static_cast<int>(match.matchedText.size());
  caret.setPosition(start, QTextCursor::KeepAnchor);
  caret.insertText(toQString(evaluated.text.string()).replace(QLatin1Char('\r'), QLatin1Char('\n')));
  if (evaluated.cursorRange) caret.setPosition(start + static_cast<int>(evaluated.cursorRange->location));
  setTextCursor(caret);
  ensureCursorVisible();
  if (expanded_) expanded_();
  return true;
}

}  // namespace quorlo
