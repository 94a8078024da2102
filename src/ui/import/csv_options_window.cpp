#include "ui/import/csv_options_window.h"

#include "import/csv/ql_csv_options_view_controller.h"
#include "ui/import/csv_preview_model.h"
#include "ui/import/destination_chooser.h"
#include "ui/import/progress_window.h"
#include "ui/import/separator_control.h"
#include "ui/mnemonics.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <utility>

namespace quorlo {
namespace {

constexpr std::chrono::milliseconds kBetweenLooks{50};
constexpr int kWidestColumn = 16;  // in line heights
constexpr int kMeasuredColumns = 100;

QLabel* makeLabel(std::u16string_view text, QWidget* field) {
  auto* const label = new QLabel(localizedText(text));
  label->setBuddy(field);
  field->setAccessibleName(label->text());
  return label;
}

void show(QComboBox& box, const PopUpButton& button) {
  const auto count = static_cast<int>(button.items.size());
  bool isFilled = box.count() == count;
  for (int i = 0; isFilled && i < count; ++i) {
    isFilled = box.itemText(i) == toQString(button.items[static_cast<std::size_t>(i)]);
  }
  if (!isFilled) {
    box.clear();
    for (std::size_t i = 0; i < button.items.size(); ++i) {
      if (i == PopUpButton::kSeparatorItem) {
        box.insertSeparator(static_cast<int>(i));
      } else {
        box.addItem(toQString(button.items[i]).simplified());
      }
    }
  }
  box.setCurrentIndex(static_cast<int>(button.selectedIndex));
}

}  // namespace

CsvOptionsWindow::CsvOptionsWindow(QLCSVOptionsViewController& controller,
                                   const ManagedObjectContext& library, std::function<void()> cancelled)
    : controller_(controller),
      cancelled_(std::move(cancelled)),
      preview_(new CsvPreviewModel(this)),
      urlTextField_(new QLineEdit),
      seperatorSegmentedControl_(
          new SeparatorControl([this](std::size_t segment) { controller_.changeSeperator(segment); })),
      hasHeaderCheckbox_(new QCheckBox(localizedText(u"The first row has the names of the columns"))),
      titlePopUpButton_(new QComboBox),
      abbreviationPopUpButton_(new QComboBox),
      textPopUpButton_(new QComboBox),
      question_(new QLabel),
      table_(new QTableView),
      rows_(new QLabel),
      notice_(new QLabel),
      destination_(new DestinationChooser(library, [this](const ImportDestination&) { setImportOptions(); })),
      skipDuplicates_(new QCheckBox(localizedText(u"Skip duplicates"))),
      progressIndicator_(new QProgressBar) {
  setWindowTitle(localizedText(u"Import a Table"));
  setWindowIcon(programIcon());
  setWindowFlags(Qt::Window);

  auto* const buttons = new QDialogButtonBox;
  import_ = buttons->addButton(localizedText(u"Import"), QDialogButtonBox::AcceptRole);
  import_->setDefault(true);
  buttons->addButton(localizedText(u"Cancel"), QDialogButtonBox::RejectRole);
  connect(buttons, &QDialogButtonBox::accepted, this, [this] { controller_.confirmOptions(); });
  connect(buttons, &QDialogButtonBox::rejected, this, &CsvOptionsWindow::reject);
  progressIndicator_->setTextVisible(false);
  progressIndicator_->setAccessibleName(localizedText(u"Progress"));
  auto policy = progressIndicator_->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  progressIndicator_->setSizePolicy(policy);

  auto* const bottom = new QHBoxLayout;
  bottom->addWidget(progressIndicator_, 1);
  bottom->addWidget(buttons);
  auto* const column = new QVBoxLayout(this);
  for (auto* const part : {makeReadingPart(), makeColumnsPart(), makePreview(), makeImportPart()}) {
    column->addWidget(part, part->isAncestorOf(table_) ? 1 : 0);
    if (part->isAncestorOf(hasHeaderCheckbox_)) column->addWidget(question_);
  }
  column->addLayout(bottom);
  assignMnemonics(*this);

  changes_ = controller_.observe([this] { refresh(); });
  refreshing_.setInterval(kBetweenLooks);
  connect(&refreshing_, &QTimer::timeout, this, &CsvOptionsWindow::showProgressOfController);
  refresh();
  titlePopUpButton_->setFocus();
  const int line = fontMetrics().lineSpacing();
  resize(QSize(44 * line, 38 * line).boundedTo(screen()->availableGeometry().size() * 0.9));
}

// How the file is read.
QWidget* CsvOptionsWindow::makeReadingPart() {
  auto* const part = new QWidget;
  auto* const form = new QFormLayout(part);
  form->setContentsMargins(0, 0, 0, 0);
  urlTextField_->setReadOnly(true);
  form->addRow(makeLabel(u"File:", urlTextField_), urlTextField_);
  form->addRow(makeLabel(u"Separator:", seperatorSegmentedControl_), seperatorSegmentedControl_);
  form->addRow(QString(), hasHeaderCheckbox_);
  connect(hasHeaderCheckbox_, &QCheckBox::clicked, this, [this](bool on) { controller_.setHasHeader(on); });
  parts_.push_back(part);
  return part;
}

// Which column is what.
QWidget* CsvOptionsWindow::makeColumnsPart() {
  auto* const part = new QWidget;
  auto* const grid = new QGridLayout(part);
  grid->setContentsMargins(0, 0, 0, 0);
  auto bold = font();
  bold.setBold(true);
  question_->setFont(bold);
  question_->setWordWrap(true);
  const auto add = [&](std::u16string_view name, QComboBox* box,
                       void (QLCSVOptionsViewController::*select)(std::size_t)) {
    const int place = grid->columnCount();
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(8);
    grid->addWidget(makeLabel(name, box), 0, place);
    grid->addWidget(box, 1, place);
    grid->setColumnStretch(place, 1);
    connect(box, &QComboBox::activated, this,
            [this, select](int item) { (controller_.*select)(static_cast<std::size_t>(item)); });
  };
  add(u"Title:", titlePopUpButton_, &QLCSVOptionsViewController::selectTitle);
  add(u"Abbreviation:", abbreviationPopUpButton_, &QLCSVOptionsViewController::selectAbbreviation);
  add(u"Text:", textPopUpButton_, &QLCSVOptionsViewController::selectText);
  parts_.push_back(part);
  return part;
}

QWidget* CsvOptionsWindow::makePreview() {
  auto* const part = new QWidget;
  auto* const column = new QVBoxLayout(part);
  column->setContentsMargins(0, 0, 0, 0);
  table_->setModel(preview_);
  table_->setAccessibleName(localizedText(u"Preview"));
  table_->setTabKeyNavigation(false);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setSelectionMode(QAbstractItemView::NoSelection);
  table_->setWordWrap(false);
  table_->setMinimumHeight(6 * fontMetrics().lineSpacing());
  table_->horizontalHeader()->setHighlightSections(false);
  table_->horizontalHeader()->setStretchLastSection(true);
  table_->verticalHeader()->setHighlightSections(false);
  connect(preview_, &QAbstractItemModel::modelReset, this, &CsvOptionsWindow::resizeColumns);
  connect(preview_, &QAbstractItemModel::headerDataChanged, this, &CsvOptionsWindow::resizeColumns);
  notice_->setWordWrap(true);
  notice_->setTextFormat(Qt::PlainText);
  column->addWidget(table_, 1);
  column->addWidget(rows_);
  column->addWidget(notice_);
  return part;
}

void CsvOptionsWindow::resizeColumns() {
  const int widest = kWidestColumn * fontMetrics().lineSpacing();
  for (int i = 0; i < std::min(preview_->columnCount(), kMeasuredColumns); ++i) {
    table_->resizeColumnToContents(i);
    table_->setColumnWidth(i, std::min(table_->columnWidth(i), widest));
  }
}

// What is made of the rows.
QWidget* CsvOptionsWindow::makeImportPart() {
  auto* const part = new QWidget;
  auto* const form = new QFormLayout(part);
  form->setContentsMargins(0, 0, 0, 0);
  form->addRow(makeLabel(u"Folder:", destination_), destination_);
  form->addRow(QString(), skipDuplicates_);
  destination_->setDestination(controller_.importOptions().destination);
  skipDuplicates_->setChecked(controller_.importOptions().skipDuplicates);
  skipDuplicates_->setToolTip(localizedText(u"Snippets that have the same title and text as another one"));
  connect(skipDuplicates_, &QCheckBox::clicked, this, &CsvOptionsWindow::setImportOptions);
  parts_.push_back(part);
  return part;
}

void CsvOptionsWindow::setImportOptions() {
  auto options = controller_.importOptions();
  options.destination = destination_->destination();
  options.skipDuplicates = skipDuplicates_->isChecked();
  controller_.setImportOptions(options);
  refresh();
}

void CsvOptionsWindow::showEvent(QShowEvent* event) {
  preview_->setPalette(palette());
  controller_.viewDidAppear();
  QDialog::showEvent(event);
}

void CsvOptionsWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) preview_->setPalette(palette());
  QDialog::changeEvent(event);
}

// Cancel, Escape, and closing the window.
void CsvOptionsWindow::reject() {
  controller_.cancel();
  if (const auto cancelled = std::exchange(cancelled_, nullptr)) cancelled();
}

void CsvOptionsWindow::refresh() {
  urlTextField_->setText(toQString(controller_.urlTextField()));
  urlTextField_->setToolTip(urlTextField_->text());
  seperatorSegmentedControl_->setSegment(controller_.seperatorSegmentedControl());
  hasHeaderCheckbox_->setChecked(controller_.hasHeaderCheckbox());
  quorlo::show(*titlePopUpButton_, controller_.titlePopUpButton());
  quorlo::show(*abbreviationPopUpButton_, controller_.abbreviationPopUpButton());
  quorlo::show(*textPopUpButton_, controller_.textPopUpButton());
  preview_->setColumns(controller_.selectedColumns());
  preview_->setTable(controller_.headers(), controller_.previewRows());
  showRows();
  for (auto* const part : parts_) part->setEnabled(!controller_.importCSVSnippets());
  import_->setEnabled(controller_.canConfirm() && !controller_.importCSVSnippets() &&
                      destination_->isComplete());
  showProgressOfController();
}

void CsvOptionsWindow::showRows() {
  const QLocale locale;
  const auto shown = locale.toString(static_cast<qulonglong>(controller_.previewRows().size()));
  const auto count = controller_.rowCount();
  if (!count) {
    rows_->clear();
  } else if (*count > controller_.previewRows().size()) {
    rows_->setText(localizedText(u"The first %1 of %2 rows")
                       .arg(shown, locale.toString(static_cast<qulonglong>(*count))));
  } else {
    rows_->setText(*count == 1 ? localizedText(u"1 row") : localizedText(u"%1 rows").arg(shown));
  }
  const auto question = toQString(controller_.question());
  question_->setText(question);
  question_->setVisible(!question.isEmpty());
  const auto& message = controller_.error().empty() ? controller_.notice() : controller_.error();
  notice_->setText(toQString(message));
  notice_->setVisible(!message.empty());
}

void CsvOptionsWindow::showProgressOfController() {
  const auto progress = controller_.progressIndicator();
  progressIndicator_->setVisible(progress.isAnimating);
  quorlo::showProgress(*progressIndicator_, progress.fraction);
  progress.isAnimating ? refreshing_.start() : refreshing_.stop();
}

}  // namespace quorlo
