#include "ui/library/export_window.h"

#include "ui/mnemonics.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

namespace quorlo {
namespace {

// In small print under a choice, and set in as far as its text.
QLabel* makeHint(const QRadioButton& button, std::u16string_view text) {
  auto* const hint = new QLabel(localizedText(text));
  hint->setWordWrap(true);
  auto font = hint->font();
  font.setPointSizeF(font.pointSizeF() * 0.9);
  hint->setFont(font);
  const int indent = hint->fontMetrics().horizontalAdvance(QLatin1Char('m')) * 2;
  hint->setContentsMargins(button.isRightToLeft() ? 0 : indent, 0, button.isRightToLeft() ? indent : 0, 0);
  return hint;
}

}  // namespace

ExportWindow::ExportWindow(const ExportOffer& offer, Chosen chosen, QWidget* parent)
    : QDialog(parent),
      offer_(offer),
      chosen_(std::move(chosen)),
      library_(new QRadioButton(localizedText(u"The whole library"))),
      folder_(new QRadioButton),
      snippets_(new QRadioButton),
      document_(new QRadioButton(localizedText(u"Quorlo library (JSON)"))),
      table_(new QRadioButton(localizedText(u"Table (CSV)"))) {
  setWindowTitle(localizedText(u"Export"));
  setWindowIcon(programIcon());
  auto* const buttons = new QDialogButtonBox;
  auto* const exportButton = buttons->addButton(localizedText(u"Export…"), QDialogButtonBox::AcceptRole);
  exportButton->setDefault(true);
  buttons->addButton(localizedText(u"Cancel"), QDialogButtonBox::RejectRole);
  connect(buttons, &QDialogButtonBox::accepted, this, &ExportWindow::chooseFile);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* const column = new QVBoxLayout(this);
  column->addWidget(makeSelectionPart());
  column->addWidget(makeFormatPart());
  column->addStretch();
  column->addWidget(buttons);
  assignMnemonics(*this);
  const int width = 26 * fontMetrics().lineSpacing();
  setMinimumWidth(width);
  resize(width, column->totalHeightForWidth(width));  // the hints are as high as they are broken
}

QWidget* ExportWindow::makeSelectionPart() {
  auto* const part = new QGroupBox(localizedText(u"What"));
  auto* const column = new QVBoxLayout(part);
  const auto title = offer_.folder ? offer_.folder->title : QString();
  folder_->setText(localizedText(u"The folder “%1”").arg(QString(title).replace(u'&', QStringLiteral("&&"))));
  folder_->setEnabled(offer_.folder.has_value());
  folder_->setVisible(offer_.folder.has_value());
  const auto count = offer_.snippets.size();
  snippets_->setText(count == 1 ? localizedText(u"The selected snippet")
                                : localizedText(u"The %1 selected snippets")
                                      .arg(QLocale().toString(static_cast<qulonglong>(count))));
  snippets_->setEnabled(count > 0);
  snippets_->setVisible(count > 0);
  for (auto* const each : {library_, folder_, snippets_}) column->addWidget(each);
  (count > 1 ? snippets_ : library_)->setChecked(true);  // one is always selected
  return part;
}

QWidget* ExportWindow::makeFormatPart() {
  auto* const part = new QGroupBox(localizedText(u"Form"));
  auto* const column = new QVBoxLayout(part);
  column->addWidget(document_);
  column->addWidget(makeHint(*document_,
                             u"Keeps folders, formats and pictures, but not use counts, dates and the trash. "
                             u"Quorlo imports it again."));
  column->addWidget(table_);
  column->addWidget(makeHint(*table_,
                             u"Titles, abbreviations and plain texts, for spreadsheets and other programs. "
                             u"What it cannot hold is listed afterwards."));
  document_->setChecked(true);
  return part;
}

ExportSelection ExportWindow::selection() const {
  if (folder_->isChecked()) return OneFolder{offer_.folder->uuid};
  if (snippets_->isChecked()) return ChosenSnippets{offer_.snippets};
  return WholeLibrary{};
}

ExportFormat ExportWindow::format() const {
  return table_->isChecked() ? ExportFormat::csv : ExportFormat::json;
}

void ExportWindow::chooseFile() {
  const bool isTable = format() == ExportFormat::csv;
  const auto suffix = isTable ? QStringLiteral("csv") : QStringLiteral("quorlo");
  const auto filter = isTable ? localizedText(u"Tables") + QStringLiteral(" (*.csv)")
                              : localizedText(u"Quorlo libraries") + QStringLiteral(" (*.quorlo *.json)");
  auto name = folder_->isChecked() ? offer_.folder->title : QStringLiteral("Quorlo");
  name.replace(QDir::separator(), QLatin1Char('-'));
  auto* const dialog = new QFileDialog(this, localizedText(u"Export"), QDir::homePath(), filter);
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix(suffix);
  dialog->selectFile(name + QLatin1Char('.') + suffix);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) {
    QTimer::singleShot(0, this, [this, file] {
      hide();
      const auto chosen = chosen_;  // which may end the window
      chosen(selection(), format(), file.toStdString());
    });
  });
  dialog->open();
}

}  // namespace quorlo
