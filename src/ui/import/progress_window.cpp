#include "ui/import/progress_window.h"

#include "import/work_progress.h"
#include "ui/mnemonics.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <chrono>
#include <utility>

namespace quorlo {
namespace {

constexpr std::chrono::milliseconds kBeforeItAppears{500};
constexpr std::chrono::milliseconds kBetweenLooks{50};
constexpr int kSteps = 1000;

}  // namespace

void showProgress(QProgressBar& bar, double fraction) {
  bar.setRange(0, fraction > 0 ? kSteps : 0);
  bar.setValue(static_cast<int>(fraction * kSteps));
}

ProgressWindow::ProgressWindow(QWidget* parent)
    : QDialog(parent),
      message_(new QLabel),
      bar_(new QProgressBar),
      cancelButton_(new QPushButton(localizedText(u"Cancel"))) {
  setWindowIcon(programIcon());
  setWindowTitle(QStringLiteral("Quorlo"));
  message_->setTextFormat(Qt::PlainText);
  message_->setWordWrap(true);
  bar_->setTextVisible(false);

  auto* const row = new QHBoxLayout;
  row->addWidget(bar_, 1);
  row->addWidget(cancelButton_);
  auto* const column = new QVBoxLayout(this);
  column->addWidget(message_);
  column->addLayout(row);
  connect(cancelButton_, &QPushButton::clicked, this, &ProgressWindow::reject);
  assignMnemonics(*this);
  setMinimumWidth(28 * fontMetrics().lineSpacing());

  appearance_.setSingleShot(true);
  appearance_.setInterval(kBeforeItAppears);
  connect(&appearance_, &QTimer::timeout, this, &QWidget::show);
  refreshing_.setInterval(kBetweenLooks);
  connect(&refreshing_, &QTimer::timeout, this, &ProgressWindow::showFraction);
}

void ProgressWindow::follow(const QString& message, const WorkProgress& progress,
                            std::function<void()> cancel) {
  message_->setText(message);
  bar_->setAccessibleName(message);
  cancelButton_->setEnabled(true);
  progress_ = &progress;
  cancel_ = std::move(cancel);
  showFraction();
  refreshing_.start();
  if (!isVisible()) appearance_.start();
}

void ProgressWindow::stop() {
  appearance_.stop();
  refreshing_.stop();
  progress_ = nullptr;
  cancel_ = nullptr;
  hide();
}

// Cancel, Escape, and closing the window.
void ProgressWindow::reject() {
  cancelButton_->setEnabled(false);
  message_->setText(localizedText(u"Cancelling…"));
  if (const auto cancel = std::exchange(cancel_, nullptr)) cancel();
}

void ProgressWindow::showFraction() {
  showProgress(*bar_, progress_->fraction());
}

}  // namespace quorlo
