#pragma once

#include "platform/insertion/insertion_table.h"

#include <QWidget>

#include <string>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace quorlo {

class InsertionSettings;
class Workspace;

// The user's entries of the table by application, to add, change and remove.
class InsertionWays : public QWidget {
 public:
  // The references must outlive the widget.
  InsertionWays(InsertionSettings& settings, Workspace& workspace);

  // Asks for the way of the application; of any if the name is empty.
  void ask(const std::string& application);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void fill();
  void removeSelected();
  void report(const Status& status);
  std::string selected() const;

  InsertionSettings& settings_;
  Workspace& workspace_;
  QTreeWidget* table_;
  QPushButton* change_;
  QPushButton* remove_;
  QLabel* problem_;
};

}  // namespace quorlo
