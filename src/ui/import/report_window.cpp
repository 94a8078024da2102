#include "ui/import/report_window.h"

#include "ui/mnemonics.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QScreen>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace quorlo {
namespace {

// Every row is measured whenever the width changes, and nobody reads more in a window.
constexpr std::size_t kShownRows = 500;

QTableWidget* makeList(const std::vector<ReportWindow::Row>& rows) {
  const auto shown = std::min(rows.size(), kShownRows);
  auto* const list = new QTableWidget(static_cast<int>(shown), 2);
  list->setHorizontalHeaderLabels({localizedText(u"Snippet"), localizedText(u"Notice")});
  list->setAccessibleName(localizedText(u"Notices"));
  for (std::size_t i = 0; i < shown; ++i) {
    const auto& [subject, message] = rows[i];
    list->setItem(static_cast<int>(i), 0, new QTableWidgetItem(subject));
    list->setItem(static_cast<int>(i), 1, new QTableWidgetItem(message));
  }
  list->setEditTriggers(QAbstractItemView::NoEditTriggers);
  list->setSelectionBehavior(QAbstractItemView::SelectRows);
  list->setTabKeyNavigation(false);
  list->setShowGrid(false);
  list->setAlternatingRowColors(true);
  list->verticalHeader()->hide();
  list->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  list->horizontalHeader()->setHighlightSections(false);
  list->horizontalHeader()->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
  list->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
  const int line = list->fontMetrics().lineSpacing();
  list->resizeColumnToContents(0);
  list->setColumnWidth(0, std::clamp(list->columnWidth(0), 5 * line, 12 * line));
  list->setColumnHidden(0, std::ranges::all_of(rows, [](const auto& row) { return row.first.isEmpty(); }));
  list->setMinimumSize(32 * line, 10 * line);
  return list;
}

}  // namespace

ReportWindow::ReportWindow(const QString& title, const QString& summary, const std::vector<Row>& rows,
                           QWidget* parent)
    : QDialog(parent, Qt::Window), buttons_(new QDialogButtonBox) {
  setWindowTitle(title);
  setWindowIcon(programIcon());
  auto* const words = new QLabel(summary);
  words->setTextFormat(Qt::PlainText);
  words->setWordWrap(true);
  words->setTextInteractionFlags(Qt::TextSelectableByMouse);
  const int line = fontMetrics().lineSpacing();
  words->setMinimumWidth(24 * line);

  auto* const column = new QVBoxLayout(this);
  column->addWidget(words);
  if (!rows.empty()) column->addWidget(makeList(rows), 1);
  if (rows.size() > kShownRows) {
    column->addWidget(new QLabel(
        localizedText(u"… and %1 more").arg(QLocale().toString(qulonglong(rows.size() - kShownRows)))));
  }
  column->addWidget(buttons_);
  auto* const close = buttons_->addButton(localizedText(u"Close"), QDialogButtonBox::RejectRole);
  close->setDefault(true);
  close->setFocus();
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
}

void ReportWindow::addButton(std::u16string_view text, QDialogButtonBox::ButtonRole role,
                             std::function<void()> act) {
  auto* const button = buttons_->addButton(localizedText(text), role);
  connect(button, &QPushButton::clicked, this, std::move(act));
}

void ReportWindow::present() {
  assignMnemonics(*this);
  resize(sizeHint().boundedTo(screen()->availableGeometry().size() * 0.9));
  show();
  raise();
  activateWindow();
}

}  // namespace quorlo
