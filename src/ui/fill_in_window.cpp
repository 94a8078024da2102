#include "ui/fill_in_window.h"

#include "app/settings/settings_controller.h"
#include "base/localized.h"
#include "engine/fill_in_session.h"
#include "text/html_writer.h"
#include "ui/fill_in_fields.h"
#include "ui/text_answer_edit.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
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
// Enough to fill any screen at once; a snippet with thousands gets the others while the window is there.
constexpr std::size_t kFieldsAtOnce = 40;
constexpr double kTransparentOpacity = 0.95;

QString text(std::u16string_view base) {
  return QString::fromStdU16String(localized(base));
}

}  // namespace

class FillInWindow::Dialog : public QDialog {
 public:
  explicit Dialog(const SettingsController& settings) : settings_(settings) {
    setWindowTitle(text(u"Fill in Snippet"));
    setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint);
    notice_->setWordWrap(true);
    notice_->setText(
        text(u"The window you were typing in is gone, so nothing was inserted. You can copy the text."));

    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->setFocusPolicy(Qt::NoFocus);

    previewLabel_->setText(text(u"Preview"));
    previewLabel_->setBuddy(preview_);
    preview_->setReadOnly(true);
    preview_->setFocusPolicy(Qt::ClickFocus);
    preview_->setAccessibleName(previewLabel_->text());

    insert_ = buttons_->addButton(QString(), QDialogButtonBox::AcceptRole);
    cancel_ = buttons_->addButton(QString(), QDialogButtonBox::RejectRole);
    insert_->setDefault(true);
    connect(buttons_, &QDialogButtonBox::accepted, this, [this] { decide(Outcome::insert); });
    connect(buttons_, &QDialogButtonBox::rejected, this, [this] { decide(Outcome::cancel); });
    hint_->setEnabled(false);
    connect(qApp, &QApplication::focusChanged, this, [this] { showHint(); });

    auto* const bottom = new QHBoxLayout;
    bottom->addWidget(hint_, 1);
    bottom->addWidget(buttons_);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(notice_);
    column->addWidget(scroll_, 3);
    column->addWidget(previewLabel_);
    column->addWidget(preview_, 2);
    column->addLayout(bottom);

    previewTimer_.setSingleShot(true);
    connect(&previewTimer_, &QTimer::timeout, this, [this] { showPreview(); });
    fieldsTimer_.setSingleShot(true);
    connect(&fieldsTimer_, &QTimer::timeout, this, [this] { addFields(); });
    winId();  // the display server's window
  }

  void open(FillInSession& session, std::function<void(Outcome)> done) {
    hide();
    session_ = &session;
    done_ = std::move(done);
    notice_->hide();
    insert_->setText(text(u"Insert"));
    cancel_->setText(text(u"Cancel"));

    inputs_.clear();
    auto* const page = new QWidget;
    form_ = new QFormLayout(page);
    form_->setRowWrapPolicy(QFormLayout::WrapLongRows);
    form_->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    scroll_->setWidget(page);
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
    insert_->setText(text(u"Copy"));
    cancel_->setText(text(u"Close"));
  }

  void release() {
    previewTimer_.stop();
    fieldsTimer_.stop();
    hide();
    done_ = nullptr;
    session_ = nullptr;
  }

 protected:
  void reject() override { decide(Outcome::cancel); }
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    decide(Outcome::cancel);
  }

 private:
  void decide(Outcome outcome) {
    if (const auto done = std::exchange(done_, nullptr)) done(outcome);
  }

  void addFields() {
    const FillInFieldEvents events{[this] { changePreview(); }, [this] { decide(Outcome::insert); }};
    const auto end = std::min(session_->fields().size(), inputs_.size() + kFieldsAtOnce);
    while (inputs_.size() < end) {
      const auto field = inputs_.size();
      auto* const input = makeFieldInput(*session_, field, events);
      auto* const label = new QLabel(labelOfField(*session_, field));
      label->setTextFormat(Qt::PlainText);
      label->setWordWrap(true);
      label->setBuddy(input);
      form_->addRow(label, input);
      inputs_.push_back(input);
    }
    if (end < session_->fields().size()) fieldsTimer_.start(0);
  }

  void showPreview() {
    if (!session_ || !preview_->isVisibleTo(this)) return;
    const auto content = session_->preview(kLongestPreview);
    const int scrolled = preview_->verticalScrollBar()->value();
    if (content.isPlain()) {
      preview_->setPlainText(QString::fromStdU16String(content.string()));
    } else {
      preview_->setHtml(QString::fromStdString(toHtml(content)));
    }
    preview_->verticalScrollBar()->setValue(scrolled);
  }

  void showHint() {
    const auto* const edit = dynamic_cast<const TextAnswerEdit*>(focusWidget());
    hint_->setText(edit && edit->holdsLines() ? text(u"Insert with Ctrl+Return") : QString());
  }

  // As large as its fields need, and on the screen as a whole.
  void place() {
    const QPoint pointer = QCursor::pos();
    const auto* screen = QGuiApplication::screenAt(pointer);
    if (!screen) screen = QGuiApplication::primaryScreen();
    const QRect room = screen->availableGeometry();
    const int line = fontMetrics().lineSpacing();
    const int fields = scroll_->widget()->sizeHint().height();
    const int preview = preview_->isVisibleTo(this) ? 6 * line : 0;
    preview_->setMinimumHeight(3 * line);
    const int width = std::min(30 * line, room.width() * 9 / 10);
    const int height = std::min(fields + preview + 7 * line, room.height() * 8 / 10);
    resize(width, height);

    QPoint corner = room.center() - QPoint(width / 2, height / 2);
    if (settings_.previewWindowPosition() == PreviewWindowPosition::nextToCursor) {
      corner = pointer + QPoint(line, line);
    }
    const int frame = 2 * line;  // the title bar, whose height is known only once the window is there
    move(std::clamp(corner.x(), room.left(), std::max(room.left(), room.right() - width)),
         std::clamp(corner.y(), room.top(), std::max(room.top(), room.bottom() - height - frame)));
  }

  const SettingsController& settings_;
  FillInSession* session_ = nullptr;  // while the window is open
  std::function<void(Outcome)> done_;
  QLabel* notice_ = new QLabel;
  QScrollArea* scroll_ = new QScrollArea;
  QFormLayout* form_ = nullptr;  // anew for each session
  std::vector<QWidget*> inputs_;
  QLabel* previewLabel_ = new QLabel;
  QTextEdit* preview_ = new QTextEdit;
  QLabel* hint_ = new QLabel;
  QDialogButtonBox* buttons_ = new QDialogButtonBox;
  QPushButton* insert_ = nullptr;
  QPushButton* cancel_ = nullptr;
  QTimer previewTimer_;
  QTimer fieldsTimer_;
};

FillInWindow::FillInWindow(const SettingsController& settings)
    : dialog_(std::make_unique<Dialog>(settings)) {}

FillInWindow::~FillInWindow() = default;

void FillInWindow::open(FillInSession& session, std::function<void(Outcome)> done) {
  dialog_->open(session, std::move(done));
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
