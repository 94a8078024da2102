#pragma once

#include <QDialog>
#include <QDialogButtonBox>

#include <functional>
#include <utility>
#include <vector>

class QPushButton;

namespace quorlo {

// What came of an import or an export: a sentence or two, and a list of what the user should know of.
class ReportWindow final : public QDialog {
 public:
  using Row = std::pair<QString, QString>;  // what it is about; may be empty, and what is to be said

  // With "Close" alone. Done with, it is hidden and `finished` emitted.
  ReportWindow(const QString& title, const QString& summary, const std::vector<Row>& rows,
               QWidget* parent = nullptr);

  // Buttons do not close the window.
  void addButton(std::u16string_view text, QDialogButtonBox::ButtonRole role, std::function<void()> act);

  void present();

 private:
  QDialogButtonBox* buttons_;
};

}  // namespace quorlo
