#include "ui/backups/backups_window.h"

#include "app/settings/settings_controller.h"
#include "platform/workspace.h"
#include "ui/mnemonics.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QCheckBox>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>

#include <chrono>
#include <utility>

namespace quorlo {
namespace {

enum Column { kDate, kSnippets, kSize, kColumnCount };

QString dateText(const Backup& backup) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(backup.date.time_since_epoch()).count();
  return QLocale().toString(QDateTime::fromSecsSinceEpoch(seconds), QLocale::ShortFormat);
}

QTreeWidgetItem* makeRow(const LibraryBackups::Listed& listed) {
  const auto& [backup, contents] = listed;
  auto* const row = new QTreeWidgetItem;
  row->setText(kDate, dateText(backup));
  row->setText(kSnippets,
               contents ? QLocale().toString(qlonglong(contents->snippets)) : localizedText(u"not readable"));
  row->setText(kSize, QLocale().formattedDataSize(qint64(backup.bytes), 1, QLocale::DataSizeSIFormat));
  row->setTextAlignment(kSnippets, Qt::AlignTrailing | Qt::AlignVCenter);
  row->setTextAlignment(kSize, Qt::AlignTrailing | Qt::AlignVCenter);
  row->setToolTip(kDate, QString::fromStdString(backup.file.string()));
  return row;
}

QLabel* makeText(const QString& text) {
  auto* const label = new QLabel(text);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

}  // namespace

BackupsWindow::BackupsWindow(BackupsWindowServices services)
    : QDialog(nullptr, Qt::Window),
      services_(std::move(services)),
      list_(new QTreeWidget),
      notice_(makeText({})),
      keeps_(new QCheckBox(localizedText(u"Keep backups of the library"))),
      restore_(new QPushButton(localizedText(u"Restore…"))),
      backUp_(new QPushButton(localizedText(u"Back Up Now"))) {
  setWindowTitle(localizedText(u"Backups"));
  setWindowIcon(programIcon());
  makeViews();
  connect(list_, &QTreeWidget::itemSelectionChanged, this, [this] { setIsBusy(isBusy_); });
  connect(list_, &QTreeWidget::itemDoubleClicked, this, [this] { askToRestore(); });
  connect(restore_, &QPushButton::clicked, this, [this] { askToRestore(); });
  connect(backUp_, &QPushButton::clicked, this, [this] { backUp(); });
  connect(keeps_, &QCheckBox::clicked, this,
          [this](bool on) { services_.settings.setKeepsBackups(on); });
  const auto follow = [this] { keeps_->setChecked(services_.settings.keepsBackups()); };
  settingsChanges_ = services_.settings.observe([follow](Setting) { follow(); });
  follow();
  setIsBusy(false);
}

BackupsWindow::~BackupsWindow() = default;

void BackupsWindow::makeViews() {
  const int line = fontMetrics().lineSpacing();
  list_->setColumnCount(kColumnCount);
  list_->setHeaderLabels({localizedText(u"Date"), localizedText(u"Snippets"), localizedText(u"Size")});
  list_->headerItem()->setTextAlignment(kSnippets, Qt::AlignTrailing | Qt::AlignVCenter);
  list_->headerItem()->setTextAlignment(kSize, Qt::AlignTrailing | Qt::AlignVCenter);
  list_->header()->setSectionResizeMode(kDate, QHeaderView::Stretch);
  list_->header()->setStretchLastSection(false);
  list_->setAccessibleName(localizedText(u"Backups"));
  list_->setRootIsDecorated(false);
  list_->setAlternatingRowColors(true);
  list_->setMinimumSize(26 * line, 11 * line);

  auto* const folder = new QLineEdit(QString::fromStdString(services_.backups.folder().path().string()));
  folder->setReadOnly(true);
  folder->setCursorPosition(0);
  auto* const folderLabel = new QLabel(localizedText(u"Folder:"));
  folderLabel->setBuddy(folder);
  auto* const open = new QPushButton(localizedText(u"Open Folder"));
  connect(open, &QPushButton::clicked, this, [this] { openFolder(); });
  auto* const place = new QHBoxLayout;
  place->addWidget(folderLabel);
  place->addWidget(folder, 1);
  place->addWidget(open);

  auto* const buttons = new QDialogButtonBox;
  buttons->addButton(restore_, QDialogButtonBox::ActionRole);
  buttons->addButton(backUp_, QDialogButtonBox::ActionRole);
  auto* const close = buttons->addButton(localizedText(u"Close"), QDialogButtonBox::RejectRole);
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  for (auto* const each : {restore_, backUp_, close, open}) each->setAutoDefault(false);

  auto* const column = new QVBoxLayout(this);
  column->addWidget(makeText(localizedText(
      u"A backup is a copy of the whole library: snippets, folders, rules, statistics and the trash.")));
  column->addWidget(list_, 1);
  column->addWidget(notice_);
  column->addWidget(keeps_);
  column->addWidget(makeText(
      localizedText(u"Quorlo makes one on each day on which something was changed, and keeps the last 10.")));
  column->addLayout(place);
  column->addWidget(buttons);
  notice_->hide();
}

void BackupsWindow::present() {
  if (!isVisible()) {
    assignMnemonics(*this);
    notice_->hide();
    resize(sizeHint().boundedTo(screen()->availableGeometry().size() * 0.9));
  }
  refresh();
  QDialog::show();
  raise();
  activateWindow();
  list_->setFocus();
}

void BackupsWindow::refresh() {
  services_.backups.list([this](const std::vector<LibraryBackups::Listed>& backups) { show(backups); });
}

void BackupsWindow::show(const std::vector<LibraryBackups::Listed>& backups) {
  shown_ = backups;
  list_->clear();
  for (const auto& each : shown_) list_->addTopLevelItem(makeRow(each));
  if (!shown_.empty()) list_->setCurrentItem(list_->topLevelItem(0));
  setIsBusy(isBusy_);
}

void BackupsWindow::backUp() {
  if (const auto saved = services_.saveLibrary(); !saved) {
    return complain(localizedText(u"The library could not be saved."), saved.error());
  }
  setIsBusy(true);
  services_.backups.add([this](const Result<BackupFolder::Addition>& added) {
    setIsBusy(false);
    if (!added) return complain(localizedText(u"The library could not be backed up."), added.error());
    notice_->setText(added.value().isNew ? localizedText(u"The library was backed up.")
                                         : localizedText(u"Nothing has changed since the newest backup."));
    notice_->show();
    refresh();
  });
}

void BackupsWindow::askToRestore() {
  const auto row = list_->currentIndex().row();
  if (isBusy_ || row < 0) return;
  const auto& backup = shown_[static_cast<std::size_t>(row)].backup;
  auto* const box = new QMessageBox(QMessageBox::Question, localizedText(u"Restore"),
                                    localizedText(u"Restore the library of %1?").arg(dateText(backup)),
                                    QMessageBox::NoButton, this);
  box->setInformativeText(localizedText(
      u"All snippets, folders, rules and statistics become those of that backup. The present library is kept as one "
      u"more backup, so that you can go back."));
  auto* const restore = box->addButton(localizedText(u"Restore"), QMessageBox::AcceptRole);
  auto* const cancel = box->addButton(localizedText(u"Cancel"), QMessageBox::RejectRole);
  box->setDefaultButton(cancel);
  box->setEscapeButton(cancel);
  box->setAttribute(Qt::WA_DeleteOnClose);
  connect(restore, &QPushButton::clicked, this, [this, file = backup.file] { this->restore(file); });
  assignMnemonics(*box);
  box->open();
}

void BackupsWindow::restore(const std::filesystem::path& backup) {
  if (const auto saved = services_.saveLibrary(); !saved) {
    return complain(localizedText(u"The library could not be saved."), saved.error());
  }
  setIsBusy(true);
  services_.restore(backup, [this](const Result<RestoredLibrary>& restored) {
    setIsBusy(false);
    refresh();
    if (!restored) return complain(localizedText(u"Nothing was restored."), restored.error());
    notice_->setText(localizedText(u"The library was restored. The former one is kept as a backup."));
    notice_->show();
  });
}

void BackupsWindow::openFolder() {
  const auto path = QString::fromStdString(services_.backups.folder().path().string());
  if (services_.workspace.openURL(QUrl::fromLocalFile(path).toEncoded().toStdString())) return;
  notice_->setText(localizedText(u"Your desktop has no program that opens this: %1").arg(path));
  notice_->show();
}

void BackupsWindow::setIsBusy(bool isBusy) {
  isBusy_ = isBusy;
  backUp_->setEnabled(!isBusy);
  restore_->setEnabled(!isBusy && list_->currentIndex().isValid());
}

void BackupsWindow::complain(const QString& what, const Error& error) {
  auto* const box = new QMessageBox(QMessageBox::Warning, what, what, QMessageBox::Ok, this);
  box->setInformativeText(QString::fromStdString(error.message));
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

}  // namespace quorlo
