#pragma once

#include <QDialog>

#include <string>
#include <vector>

class QIcon;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace quorlo {

class Workspace;

// Asks the user for an application: one that runs, one that is installed, or any other by its identifier.
class ApplicationChooser : public QDialog {
 public:
  struct Choice {
    std::string identifier;
    QString name;
    std::string iconName;
  };

  // The workspace is asked now, and never again.
  ApplicationChooser(const Workspace& workspace, QWidget* parent);

  // The chosen bundle identifier; not empty once the dialog was accepted.
  std::string bundleIdentifier() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void addApplications(const Workspace& workspace);
  void addItem(const Choice& choice, bool isRunning);
  void filter(const QString& text);

  QLineEdit* search_;
  QListWidget* list_;
  QListWidgetItem* byIdentifier_ = nullptr;  // the last, for what was typed
  QPushButton* choose_;
};

// Of an installed application, as the workspace names it; one that stands for any application otherwise.
QIcon applicationIcon(const std::string& iconName);

}  // namespace quorlo
