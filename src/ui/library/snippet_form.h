#pragma once

#include "base/subscription.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class QComboBox;
class QLabel;
class QLineEdit;
class QTimer;
class QToolBar;

namespace quorlo {

class QLSnippet;
class SnippetTextEdit;

// One snippet to be looked at and changed. What is typed reaches the record after a moment, when another
// snippet is shown, and by takeOver; the abbreviation when Return is pressed or its field left, if it may be
// used.
class SnippetForm final : public QWidget {
  Q_OBJECT

 public:
  // Why an abbreviation may not be used for the snippet, in words for the user; absent when it may.
  using Validation = std::function<std::optional<std::u16string>(std::u16string_view, const QLSnippet&)>;

  // `advise` says what is unfortunate about an abbreviation that may be used; nothing without one.
  explicit SnippetForm(Validation validate, Validation advise = nullptr, QWidget* parent = nullptr);
  ~SnippetForm() override;

  // Null for none. A snippet in the trash can be looked at only.
  void setSnippet(std::shared_ptr<QLSnippet> snippet);
  const std::shared_ptr<QLSnippet>& snippet() const { return snippet_; }

  // Brings everything typed into the record. False when the abbreviation may not be used; the form says why
  // and keeps it.
  bool takeOver();

  void focusTitle();

  // For text that can have formats.
  void setShowsFormatBar(bool shows);

 private:
  void show();
  bool showAbbreviationFault();  // whether there is one; else what is advised
  bool takeOverAbbreviation();
  void takeOverText();
  void recordChanged(std::string_view property);
  void showDetails();
  QToolBar* makeFormatBar();

  Validation validate_;
  Validation advise_;
  std::shared_ptr<QLSnippet> snippet_;
  Subscription changes_;
  bool showsFormatBar_ = true;
  bool isShowing_ = false;  // fields are being filled, not edited
  QTimer* pause_;
  QLineEdit* title_;
  QLineEdit* abbreviation_;
  QLabel* fault_;
  QComboBox* type_;
  QToolBar* formatBar_;
  SnippetTextEdit* text_;
  QLabel* details_;
};

}  // namespace quorlo
