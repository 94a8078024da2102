#include "ui/library/snippet_form.h"

#include "store/records/ql_snippet.h"
#include "store/records/snippet_type.h"
#include "ui/library/snippet_text_edit.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QAction>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QScopedValueRollback>
#include <QTextDocument>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <chrono>
#include <utility>

namespace quorlo {
namespace {

constexpr std::chrono::milliseconds kPauseInTyping{400};

SnippetType typeOf(const QLSnippet& snippet) {
  return snippet.type().value_or(SnippetType::plainText);
}

bool hasFormats(SnippetType type) {
  return type == SnippetType::formatted || type == SnippetType::image;
}

}  // namespace

SnippetForm::SnippetForm(Validation validate, Validation advise, QWidget* parent)
    : QWidget(parent),
      validate_(std::move(validate)),
      advise_(std::move(advise)),
      pause_(new QTimer(this)),
      title_(new QLineEdit),
      abbreviation_(new QLineEdit),
      fault_(new QLabel),
      type_(new QComboBox),
      formatBar_(makeFormatBar()),
      text_(new SnippetTextEdit),
      details_(new QLabel) {
  for (const auto each : kSnippetTypes) {
    const auto name = symbolName(each);
    type_->addItem(symbol(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()))),
                   toQString(displayName(each)), static_cast<qlonglong>(each));
  }
  fault_->setWordWrap(true);
  fault_->setObjectName(QStringLiteral("abbreviationFault"));
  fault_->hide();
  abbreviation_->setPlaceholderText(localizedText(u"What you type to get the snippet"));
  abbreviation_->setObjectName(QStringLiteral("abbreviation"));
  title_->setObjectName(QStringLiteral("title"));
  text_->setAccessibleName(localizedText(u"Text"));
  details_->setEnabled(false);

  auto* const fields = new QFormLayout;
  fields->addRow(localizedText(u"&Title"), title_);
  fields->addRow(localizedText(u"A&bbreviation"), abbreviation_);
  fields->addRow(QString(), fault_);
  fields->addRow(localizedText(u"T&ype"), type_);
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(fields);
  layout->addWidget(formatBar_);
  layout->addWidget(text_, 1);
  layout->addWidget(details_);

  pause_->setSingleShot(true);
  pause_->setInterval(kPauseInTyping);
  connect(pause_, &QTimer::timeout, this, &SnippetForm::takeOverText);
  connect(text_, &QTextEdit::textChanged, pause_, qOverload<>(&QTimer::start));
  connect(title_, &QLineEdit::textEdited, this, [this](const QString& title) {
    if (!snippet_) return;
    const QScopedValueRollback showing(isShowing_, true);
    snippet_->setTitle(title.toStdU16String());
    snippet_->setTitleIsCustom(!title.isEmpty());
  });
  connect(abbreviation_, &QLineEdit::textEdited, this, &SnippetForm::showAbbreviationFault);
  connect(abbreviation_, &QLineEdit::editingFinished, this, &SnippetForm::takeOverAbbreviation);
  connect(type_, &QComboBox::activated, this, [this](int index) {
    if (!snippet_) return;
    takeOverText();
    snippet_->setFormatted(type_->itemData(index).toLongLong());
  });
  setSnippet(nullptr);
}

SnippetForm::~SnippetForm() = default;

void SnippetForm::setSnippet(std::shared_ptr<QLSnippet> snippet) {
  if (snippet_ && snippet_ == snippet) return;
  if (snippet_) takeOver();
  snippet_ = std::move(snippet);
  changes_ = snippet_
                 ? snippet_->observeChanges([this](std::string_view property) { recordChanged(property); })
                 : Subscription();
  show();
}

bool SnippetForm::takeOver() {
  takeOverText();
  return takeOverAbbreviation();
}

void SnippetForm::focusTitle() {
  title_->setFocus();
  title_->selectAll();
}

void SnippetForm::setShowsFormatBar(bool shows) {
  showsFormatBar_ = shows;
  formatBar_->setVisible(shows && snippet_ && hasFormats(typeOf(*snippet_)));
}

void SnippetForm::show() {
  const QScopedValueRollback showing(isShowing_, true);
  pause_->stop();
  const bool isEditable = snippet_ && !snippet_->deletionDate();
  for (QWidget* each : {static_cast<QWidget*>(title_), static_cast<QWidget*>(abbreviation_),
                        static_cast<QWidget*>(type_), static_cast<QWidget*>(formatBar_)}) {
    each->setEnabled(isEditable);
  }
  text_->setEnabled(snippet_ != nullptr);
  text_->setReadOnly(!isEditable);
  setShowsFormatBar(showsFormatBar_);
  fault_->hide();
  if (!snippet_) {
    title_->clear();
    abbreviation_->clear();
    text_->setSnippetText({}, SnippetType::plainText);
    details_->clear();
    return;
  }
  title_->setText(toQString(snippet_->title()));
  title_->setPlaceholderText(toQString(snippet_->displayTitle()));
  abbreviation_->setText(toQString(snippet_->abbreviation()));
  type_->setCurrentIndex(type_->findData(static_cast<qlonglong>(typeOf(*snippet_))));
  text_->setSnippetText(snippet_->text(), typeOf(*snippet_));
  showDetails();
}

bool SnippetForm::showAbbreviationFault() {
  const auto typed = abbreviation_->text().toStdU16String();
  const bool isThere = snippet_ && !typed.empty();
  const auto fault = isThere ? validate_(typed, *snippet_) : std::nullopt;
  const auto words = !fault && isThere && advise_ ? advise_(typed, *snippet_) : fault;
  fault_->setText(words ? toQString(*words) : QString());
  fault_->setVisible(words.has_value());
  abbreviation_->setAccessibleDescription(fault_->text());
  return fault.has_value();
}

bool SnippetForm::takeOverAbbreviation() {
  if (!snippet_ || snippet_->isDeleted() || snippet_->deletionDate()) return true;
  if (showAbbreviationFault()) return false;
  snippet_->setAbbreviation(abbreviation_->text().toStdU16String());
  return true;
}

void SnippetForm::takeOverText() {
  if (!pause_->isActive() && !text_->document()->isModified()) return;
  pause_->stop();
  text_->document()->setModified(false);
  if (!snippet_ || snippet_->isDeleted()) return;
  const QScopedValueRollback showing(isShowing_, true);
  snippet_->setText(text_->snippetText());
  showDetails();
}

// Another window, another process or the menu may change the snippet as well. What is being typed here stays.
void SnippetForm::recordChanged(std::string_view property) {
  if (isShowing_) return;
  if (property == QLSnippet::kTitle.name) {
    title_->setText(toQString(snippet_->title()));
  } else if (property == QLSnippet::kAbbreviation.name) {
    if (!abbreviation_->hasFocus()) abbreviation_->setText(toQString(snippet_->abbreviation()));
  } else if (property == QLSnippet::kFormatted.name || property == QLSnippet::kDeletionDate.name) {
    show();
  } else if (property == QLSnippet::kText.name || property == QLSnippet::kPlainText.name) {
    if (!pause_->isActive()) show();
  } else if (property == QLSnippet::kUseCount.name) {
    showDetails();
  }
}

void SnippetForm::showDetails() {
  details_->setText(toQString(snippet_->useCountText()));
}

QToolBar* SnippetForm::makeFormatBar() {
  auto* const bar = new QToolBar;
  const auto add = [&](const char* icon, std::u16string_view name, const QKeySequence& keys, auto&& act) {
    auto* const action = bar->addAction(symbol(QString::fromLatin1(icon)), localizedText(name));
    action->setShortcut(keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(action);
    connect(action, &QAction::triggered, this, act);
  };
  add("bold", u"Bold", QKeySequence::Bold, [this] { text_->toggleBold(); });
  add("italic", u"Italic", QKeySequence::Italic, [this] { text_->toggleItalic(); });
  add("underline", u"Underline", QKeySequence::Underline, [this] { text_->toggleUnderline(); });
  add("photo", u"Picture…", {}, [this] {
    const auto file = QFileDialog::getOpenFileName(
        this, localizedText(u"Choose a picture"), {},
        localizedText(u"Pictures") + QStringLiteral(" (*.png *.jpg *.jpeg *.gif *.webp *.svg)"));
    if (!file.isEmpty() && !text_->insertPicture(file)) {
      QMessageBox::warning(this, localizedText(u"Choose a picture"),
                           localizedText(u"This file is not a picture."));
    }
  });
  return bar;
}

}  // namespace quorlo
