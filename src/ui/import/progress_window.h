#pragma once

#include <QDialog>
#include <QTimer>

#include <functional>

class QLabel;
class QProgressBar;
class QPushButton;

namespace quorlo {

class WorkProgress;

// The bar of a longer piece of work with Cancel beside it. Work that is done at once never shows it.
class ProgressWindow final : public QDialog {
 public:
  explicit ProgressWindow(QWidget* parent = nullptr);

  // Shows itself half a second from now, unless stop() comes first, and follows the progress until then.
  // `cancel` is called once, when the user does not want to wait; the window stays until stop().
  void follow(const QString& message, const WorkProgress& progress, std::function<void()> cancel);
  void stop();

 protected:
  void reject() override;

 private:
  void showFraction();

  QLabel* message_;
  QProgressBar* bar_;
  QPushButton* cancelButton_;
  QTimer appearance_;
  QTimer refreshing_;
  const WorkProgress* progress_ = nullptr;  // null while nothing is followed
  std::function<void()> cancel_;
};

// A bar that shows a fraction from 0 to 1, and that it goes on while that is 0.
void showProgress(QProgressBar& bar, double fraction);

}  // namespace quorlo
