#pragma once

#include <QPlainTextEdit>

#include <functional>

namespace quorlo {

// A text field that is as high as its text, up to some lines. While it holds one line Return submits it
// and Shift+Return begins another line; once it has held several, Return begins a line and Ctrl+Return
// submits. Tab leads to the next field.
class TextAnswerEdit : public QPlainTextEdit {
 public:
  TextAnswerEdit(const QString& text, std::function<void()> submit);

  bool holdsLines() const { return holdsLines_; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void fitText();

  std::function<void()> submit_;
  bool holdsLines_ = false;
};

}  // namespace quorlo
