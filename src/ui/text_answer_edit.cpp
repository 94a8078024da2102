#include "ui/text_answer_edit.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

constexpr int kMostLines = 6;

}  // namespace

TextAnswerEdit::TextAnswerEdit(const QString& text, std::function<void()> submit)
    : QPlainTextEdit(text), submit_(std::move(submit)) {
  setTabChangesFocus(true);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  connect(this, &QPlainTextEdit::textChanged, this, [this] { fitText(); });
  fitText();
}

void TextAnswerEdit::fitText() {
  const int lines = blockCount();
  if (lines > 1) holdsLines_ = true;
  // A scroll bar would cover half of a single line.
  setVerticalScrollBarPolicy(holdsLines_ ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
  updateGeometry();
}

QSize TextAnswerEdit::sizeHint() const {
  const int shown = std::clamp(blockCount(), holdsLines_ ? 3 : 1, kMostLines);
  const auto margins = contentsMargins();
  const int around = 2 * static_cast<int>(document()->documentMargin()) + margins.top() + margins.bottom();
  return {QPlainTextEdit::sizeHint().width(), shown * fontMetrics().lineSpacing() + around};
}

void TextAnswerEdit::keyPressEvent(QKeyEvent* event) {
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!isReturn) return QPlainTextEdit::keyPressEvent(event);
  const auto modifiers = event->modifiers() & ~Qt::KeypadModifier;
  const bool submits = holdsLines_ ? modifiers == Qt::ControlModifier : (modifiers & Qt::ShiftModifier) == 0;
  if (submits) return submit_();
  insertPlainText(QStringLiteral("\n"));
  ensureCursorVisible();
}

// As in any dialog: what is typed on arriving by Tab replaces what stands there.
void TextAnswerEdit::focusInEvent(QFocusEvent* event) {
  QPlainTextEdit::focusInEvent(event);
  if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason) selectAll();
}

// A selection that stays behind would look like the place of the keyboard.
void TextAnswerEdit::focusOutEvent(QFocusEvent* event) {
  QPlainTextEdit::focusOutEvent(event);
  if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason) return;
  auto cursor = textCursor();
  cursor.clearSelection();
  setTextCursor(cursor);
}

}  // namespace quorlo
