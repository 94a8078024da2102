#pragma once

#include <QWidget>

class QListWidget;
class QStackedWidget;

namespace quorlo {

class SettingsPage;
struct SettingsServices;

// All settings, in pages. A change holds at once, and the controls follow changes made elsewhere.
class SettingsWindow : public QWidget {
 public:
  // Everything that the services refer to must outlive the window.
  explicit SettingsWindow(const SettingsServices& services);

 private:
  void addPage(SettingsPage* page, QStringView symbolName);

  QListWidget* titles_;
  QStackedWidget* pages_;
  QSize largestPage_;
};

}  // namespace quorlo
