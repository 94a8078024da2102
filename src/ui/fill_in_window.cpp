#include "ui/fill_in_window.h"

#include "app/settings/settings_controller.h"
#include "engine/fill_in/fill_in_session.h"
#include "text/html_writer.h"
#include "ui/fill_in_fields.h"
#include "ui/qt_text.h"
#include "ui/text_answer_edit.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

constexpr std::size_t kLongestPreview = 20'000;
// Enough to fill any screen. A snippet with thousands gets the next ones when the user comes near them.
constexpr std::size_t kFieldsAtOnce = 40;
constexpr int kLongLabel = 24;  // in characters; with a longer one labels stand above their fields
constexpr int kPreviewLines = 7;
constexpr double kTransparentOpacity = 0.95;

// As high as what it shows, where there is room.
class FieldsArea : public QScrollArea {
 public:
  FieldsArea() {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  }
  void fitWidth(int width) {
    const int height = widget()->layout()->totalHeightForWidth(width);
    hint_ = {width, height >= 0 ? height : widget()->sizeHint().height()};
    updateGeometry();
  }
  QSize sizeHint() const override { return hint_; }

 private:
  QSize hint_;
};

}  // namespace

class FillInWindow::Dialog : public QDialog {
 public:
  explicit Dialog(const SettingsController& settings) : settings_(settings) {
    setWindowTitle(localizedText(u"Fill in Snippet"));
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint);
    notice_->setWordWrap(true);
    notice_->setText(localizedText(
        u"The window you were typing in is gone, so nothing was inserted. You can copy the text."));

    previewLabel_->setText(localizedText(u"Preview"));
    previewLabel_->setBuddy(preview_);
    preview_->setReadOnly(true);
    preview_->setFocusPolicy(Qt::ClickFocus);
    preview_->setFixedHeight(kPreviewLines * fontMetrics().lineSpacing());
    preview_->setAccessibleName(previewLabel_->text());

    insert_ = buttons_->addButton(QString(), QDialogButtonBox::AcceptRole);
    cancel_ = buttons_->addButton(QString(), QDialogButtonBox::RejectRole);
    insert_->setDefault(true);
    connect(buttons_, &QDialogButtonBox::accepted, this, [this] { decide(Outcome::insert); });
    connect(buttons_, &QDialogButtonBox::rejected, this, [this] { decide(Outcome::cancel); });
    hint_->setEnabled(false);
    connect(qApp, &QApplication::focusChanged, &connections_, [this] {
      if (!inputs_.empty() && focusWidget() == inputs_.back()) addFields();
      showHint();
      markPlaces();
    });

    auto* const bottom = new QHBoxLayout;
    bottom->addWidget(hint_, 1);
    bottom->addWidget(buttons_);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(notice_);
    column->addWidget(area_, 1);
    column->addWidget(previewLabel_);
    column->addWidget(preview_);
    column->addLayout(bottom);

    previewTimer_.setSingleShot(true);
    connect(&previewTimer_, &QTimer::timeout, this, [this] { showPreview(); });
    const auto* const bar = area_->verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, &connections_, [this, bar](int value) {
      if (session_ && value + bar->pageStep() > bar->maximum()) addFields();
    });
    winId();  // the display server's window
  }

  void showSession(FillInSession& session, std::function<void(Outcome)> done) {
    release();
    session_ = &session;
    done_ = std::move(done);
    notice_->hide();
    insert_->setText(localizedText(u"Insert"));
    cancel_->setText(localizedText(u"Cancel"));

    auto* const page = new QWidget;
    groups_ = new QVBoxLayout(page);
    groups_->setContentsMargins(0, 0, 0, 0);
    area_->setWidget(page);
    addFields();

    const bool showsPreview = settings_.showMacroReplacementPreviewInReplacementView();
    previewLabel_->setVisible(showsPreview);
    preview_->setVisible(showsPreview);
    showPreview();
    setWindowOpacity(settings_.useTransparentBacgroundForPreview() ? kTransparentOpacity : 1.0);
    place();
    if (!inputs_.empty()) focusFieldInput(*inputs_.front());
    show();
    raise();
    activateWindow();
  }

  void changePreview() {
    if (!previewTimer_.isActive()) previewTimer_.start(0);
  }

  void offerCopy(std::function<void(Outcome)> done) {
    done_ = std::move(done);
    notice_->show();
    insert_->setText(localizedText(u"Copy"));
    cancel_->setText(localizedText(u"Close"));
  }

  void release() {
    previewTimer_.stop();
    done_ = nullptr;
    session_ = nullptr;
    inputs_.clear();
    places_.clear();
    hide();  // moves the focus, which must find no session any more
    // It may be in the middle of a key press.
    if (auto* const page = area_->takeWidget()) page->deleteLater();
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && event->modifiers().testFlag(Qt::ControlModifier)) return decide(Outcome::insert);
    QDialog::keyPressEvent(event);
  }
  void reject() override { decide(Outcome::cancel); }
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    decide(Outcome::cancel);
  }

 private:
  void decide(Outcome outcome) {
    if (const auto done = std::exchange(done_, nullptr)) done(outcome);
  }

  // In groups with layouts of their own, since Qt lays out again with each widget that is shown.
  void addFields() {
    const auto first = inputs_.size();
    const auto end = std::min(session_->fields().size(), first + kFieldsAtOnce);
    if (first == end) return;
    const FillInFieldEvents events{[this] { changePreview(); }, [this] { decide(Outcome::insert); }};
    auto* const group = new QWidget;
    auto* const form = new QFormLayout(group);
    form->setContentsMargins(0, 0, 0, 0);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    int widestLabel = 0;
    while (inputs_.size() < end) {
      const auto field = inputs_.size();
      auto* const input = makeFieldInput(*session_, field, events);
      auto* const label = new QLabel(labelOfField(*session_, field));
      widestLabel = std::max(widestLabel, label->sizeHint().width());
      label->setTextFormat(Qt::PlainText);
      label->setWordWrap(true);
      label->setBuddy(input);
      form->addRow(label, input);
      inputs_.push_back(input);
    }
    form->setRowWrapPolicy(widestLabel > fontMetrics().averageCharWidth() * kLongLabel
                               ? QFormLayout::WrapAllRows
                               : QFormLayout::DontWrapRows);
    groups_->addWidget(group);
    for (auto i = std::max<std::size_t>(first, 1); i < end; ++i) setTabOrder(inputs_[i - 1], inputs_[i]);
  }

  void showPreview() {
    if (!session_ || !preview_->isVisibleTo(this)) return;
    const auto content = session_->preview(kLongestPreview);
    if (content.text.isPlain()) {
      preview_->setPlainText(QString::fromStdU16String(content.text.string()));
    } else {
      preview_->setHtml(QString::fromStdString(toHtml(content.text)));
    }
    places_ = content.places;
    markPlaces();
  }

  // Shows where the answer that is being given stands in the text.
  void markPlaces() {
    if (!session_) return;
    const auto current = std::ranges::find(inputs_, focusWidget());
    if (current == inputs_.end()) return;
    const auto field = static_cast<std::size_t>(current - inputs_.begin());
    QList<QTextEdit::ExtraSelection> marks;
    const auto at = [&](std::size_t position) {
      const int end = preview_->document()->characterCount() - 1;
      return std::min(static_cast<int>(position), end);
    };
    for (const auto& place : places_) {
      if (place.field != field) continue;
      QTextEdit::ExtraSelection mark;
      mark.cursor = QTextCursor(preview_->document());
      mark.cursor.setPosition(at(place.range.end()));
      if (marks.empty()) scrollTo(mark.cursor);
      mark.cursor.setPosition(at(place.range.location), QTextCursor::KeepAnchor);
      mark.format.setBackground(palette().color(QPalette::Highlight));
      mark.format.setForeground(palette().color(QPalette::HighlightedText));
      marks.push_back(mark);
    }
    preview_->setExtraSelections(marks);
  }

  void scrollTo(const QTextCursor& cursor) {
    preview_->setTextCursor(cursor);
    preview_->ensureCursorVisible();
  }

  void showHint() {
    const auto* const edit = dynamic_cast<const TextAnswerEdit*>(focusWidget());
    hint_->setText(edit && edit->holdsLines() ? localizedText(u"Insert with Ctrl+Return") : QString());
  }

  // As large as its fields need, and on the screen as a whole.
  void place() {
    const QPoint pointer = QCursor::pos();
    const auto* screen = QGuiApplication::screenAt(pointer);
    if (!screen) screen = QGuiApplication::primaryScreen();
    const QRect room = screen->availableGeometry();
    const int line = fontMetrics().lineSpacing();
    const int frame = 2 * line;  // the title bar, whose height is known only once the window is there
    const int width = std::min(30 * line, room.width());
    const auto margins = layout()->contentsMargins();
    area_->fitWidth(width - margins.left() - margins.right());
    const int height = std::min(layout()->totalSizeHint().height(), room.height() - frame);
    resize(width, height);

    QPoint corner = room.center() - QPoint(width / 2, height / 2);
    if (settings_.previewWindowPosition() == PreviewWindowPosition::nextToCursor) {
      corner = pointer + QPoint(line, line);
    }
    move(std::clamp(corner.x(), room.left(), std::max(room.left(), room.right() - width - line)),
         std::clamp(corner.y(), room.top(), std::max(room.top(), room.bottom() + 1 - height - frame)));
  }

  const SettingsController& settings_;
  FillInSession* session_ = nullptr;  // while the window is open
  std::function<void(Outcome)> done_;
  QLabel* notice_ = new QLabel;
  FieldsArea* area_ = new FieldsArea;
  QVBoxLayout* groups_ = nullptr;                      // of fields, anew for each session
  std::vector<QWidget*> inputs_;                       // by field
  std::vector<FillInSession::Reading::Place> places_;  // in the preview
  QLabel* previewLabel_ = new QLabel;
  QTextEdit* preview_ = new QTextEdit;
  QLabel* hint_ = new QLabel;
  QDialogButtonBox* buttons_ = new QDialogButtonBox;
  QPushButton* insert_ = nullptr;
  QPushButton* cancel_ = nullptr;
  QTimer previewTimer_;
  QObject connections_;  // the last: the end of the widgets must not call back
};

FillInWindow::FillInWindow(const SettingsController& settings)
    : dialog_(std::make_unique<Dialog>(settings)) {}

FillInWindow::~FillInWindow() = default;

void FillInWindow::open(FillInSession& session, std::function<void(Outcome)> done) {
  dialog_->showSession(session, std::move(done));
}

void FillInWindow::refreshPreview() {
  dialog_->changePreview();
}

void FillInWindow::offerCopy(std::function<void(Outcome)> done) {
  dialog_->offerCopy(std::move(done));
}

void FillInWindow::close() {
  dialog_->release();
}

std::uintptr_t FillInWindow::nativeWindow() const {
  return static_cast<std::uintptr_t>(dialog_->winId());
}

}  // namespace quorlo
