#pragma once

#include <QWidget>

#include <functional>
#include <string>

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

  // Opens the page of the applications and asks there how this one takes what is inserted.
  void askForWay(const std::string& application);

 private:
  void addPage(SettingsPage* page, QStringView symbolName);

  QListWidget* titles_;
  QStackedWidget* pages_;
  QSize largestPage_;
  int applicationsRow_ = 0;
  std::function<void(const std::string&)> askForWay_;
};

}  // namespace quorlo
