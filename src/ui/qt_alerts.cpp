#include "ui/qt_alerts.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QPushButton>
#include <QString>

#include <algorithm>

namespace quorlo {

std::size_t QtAlerts::runModal(const Alert& alert) {
  QMessageBox box(QMessageBox::Information, QStringLiteral("Quorlo"),
                  QString::fromStdU16String(alert.message));
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(QString::fromStdU16String(alert.informativeText));
  std::vector<QAbstractButton*> buttons;
  for (const auto& title : alert.buttons) {
    const auto role = buttons.empty() ? QMessageBox::AcceptRole : QMessageBox::RejectRole;
    buttons.push_back(box.addButton(QString::fromStdU16String(title), role));
  }
  if (!buttons.empty()) {
    box.setDefaultButton(qobject_cast<QPushButton*>(buttons.front()));
    box.setEscapeButton(buttons.back());
  }
  box.exec();
  const auto chosen = std::ranges::find(buttons, box.clickedButton());
  if (chosen != buttons.end()) return static_cast<std::size_t>(chosen - buttons.begin());
  return buttons.empty() ? 0 : buttons.size() - 1;
}

}  // namespace quorlo
