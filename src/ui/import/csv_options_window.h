#pragma once

#include "base/subscription.h"

#include <QDialog>
#include <QTimer>

#include <functional>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTableView;

namespace quorlo {

class CsvPreviewModel;
class DestinationChooser;
class ManagedObjectContext;
class QLCSVOptionsViewController;
class SeparatorControl;

// How a table is to be read and which column is what, with its first rows to see the effect. Shows what the
// controller says and tells it what the user does.
class CsvOptionsWindow final : public QDialog {
 public:
  // `cancelled` is called once, from within a slot of the window, when the user leaves without importing. The
  // references outlive the window.
  CsvOptionsWindow(QLCSVOptionsViewController& controller, const ManagedObjectContext& library,
                   std::function<void()> cancelled);

 protected:
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;
  void reject() override;

 private:
  QWidget* makeReadingPart();
  QWidget* makeColumnsPart();
  QWidget* makePreview();
  QWidget* makeImportPart();
  void resizeColumns();
  void refresh();
  void showRows();
  void showProgressOfController();
  void setImportOptions();

  QLCSVOptionsViewController& controller_;
  std::function<void()> cancelled_;
  CsvPreviewModel* preview_;

  QLineEdit* urlTextField_;
  SeparatorControl* seperatorSegmentedControl_;
  QCheckBox* hasHeaderCheckbox_;
  QComboBox* titlePopUpButton_;
  QComboBox* abbreviationPopUpButton_;
  QComboBox* textPopUpButton_;
  QLabel* question_;
  QTableView* table_;
  QLabel* rows_;
  QLabel* notice_;
  DestinationChooser* destination_;
  QCheckBox* skipDuplicates_;
  QProgressBar* progressIndicator_;
  QPushButton* import_;
  std::vector<QWidget*> parts_;  // disabled while the records are made
  QTimer refreshing_;
  Subscription changes_;
};

}  // namespace quorlo
