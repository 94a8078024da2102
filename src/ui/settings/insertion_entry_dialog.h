#pragma once

#include "platform/insertion/insertion_table.h"

#include <QDialog>

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace quorlo {

class Workspace;

// Asks how one application takes what is inserted into it.
class InsertionEntryDialog : public QDialog {
 public:
  // Begins with the entry; its application is empty for a new one.
  InsertionEntryDialog(const InsertionEntry& entry, const Workspace& workspace, QWidget* parent);

  // Valid once the dialog was accepted.
  InsertionEntry entry() const;

 private:
  void choose(const Workspace& workspace);
  Result<InsertionProfile> profile() const;
  void check();

  QLineEdit* application_;
  QComboBox* method_;
  QLineEdit* keys_;
  QDoubleSpinBox* pause_;
  QLabel* problem_;
  QPushButton* accept_;
};

}  // namespace quorlo
