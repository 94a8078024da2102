#pragma once

#include "base/result.h"
#include "platform/shortcut.h"
#include "ui/welcome/try_out_edit.h"

#include <QWidget>

#include <functional>
#include <optional>
#include <string_view>

class QCheckBox;
class QLabel;
class QPushButton;
class QStackedWidget;
class QVBoxLayout;

namespace quorlo {

class HotKeyCenter;
class HotKeyField;
class KeyboardLayout;
class LaunchAtLogin;
class ManagedObjectContext;

// What the welcome window changes and uses; all of it outlives the window.
struct WelcomeServices {
  SettingsController& settings;
  LaunchAtLogin& launchAtLogin;
  HotKeyCenter& hotKeys;
  const KeyboardLayout& keyboardLayout;
  const ManagedObjectContext& library;
  const QLSnippetMacroInterpreter& interpreter;
  TryOutEdit::FindSnippet findSnippet;
  // The menu's hot key, which the program has registered; empty for none.
  std::function<std::optional<Shortcut>()> menuShortcut;
  std::function<void(std::optional<Shortcut>)> setMenuShortcut;
  // Whether there are starter snippets to offer, and how they come into the library.
  std::function<bool()> starterIsDue;
  std::function<Status(bool accepted)> answerStarterOffer;
  std::function<void()> closed;
};

// Explains the program in three steps: abbreviations, a field to try one in, the menu and its hot key. Once
// closed, however far the user came, it counts as shown; shown again, it begins anew.
class WelcomeWindow : public QWidget {
 public:
  explicit WelcomeWindow(const WelcomeServices& services);

 protected:
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  QVBoxLayout* addStep(const QIcon& icon, std::u16string_view title, std::u16string_view text);
  void addAbbreviationsStep();
  void addTryOutStep();
  void addMenuStep();
  void go(int step);
  void answerStarterOffer();
  void suggestAbbreviation();
  void refresh();

  WelcomeServices services_;
  QStackedWidget* steps_;
  QLabel* progress_;
  QPushButton* back_;
  QPushButton* next_;
  QCheckBox* abbreviations_ = nullptr;
  QCheckBox* starter_ = nullptr;
  QLabel* suggestion_ = nullptr;
  TryOutEdit* tryOut_ = nullptr;
  QLabel* praise_ = nullptr;
  HotKeyField* hotKey_ = nullptr;
  QPushButton* proposal_ = nullptr;
  QCheckBox* launchAtLogin_ = nullptr;
  bool isToBegin_ = true;  // with the first step, when it is shown next
  Subscription settingsChanges_;
};

}  // namespace quorlo
