#pragma once

#include "import/import_options.h"

#include <QWidget>

#include <functional>

class QComboBox;
class QLineEdit;

namespace quorlo {

class ManagedObjectContext;

// Which folder imported snippets go to: none, one of the user's own, or a new one with its name.
class DestinationChooser final : public QWidget {
 public:
  // Offers the folders that the library has now. `chosen` is called with what the user chooses.
  DestinationChooser(const ManagedObjectContext& library, std::function<void(ImportDestination)> chosen);

  void setDestination(const ImportDestination& destination);
  ImportDestination destination() const;
  // False while a new folder has no name.
  bool isComplete() const;

 private:
  bool isNew() const;

  QComboBox* folders_;
  QLineEdit* newTitle_;
  std::function<void(ImportDestination)> chosen_;
};

}  // namespace quorlo
