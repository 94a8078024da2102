#include "ui/desktop/qt_alerts.h"

#include "platform/target_focus.h"
#include "ui/mnemonics.h"
#include "ui/symbols.h"

#include <QAbstractButton>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QString>
#include <QStyle>

#include <algorithm>
#include <vector>

namespace quorlo {

std::size_t QtAlerts::runModal(const Alert& alert) {
  QMessageBox box;
  box.setWindowTitle(QStringLiteral("Quorlo"));
  box.setWindowFlag(Qt::WindowStaysOnTopHint);
  box.setIconPixmap(
      programIcon().pixmap(box.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &box)));
  box.setTextFormat(Qt::PlainText);
  box.setText(QString::fromStdU16String(alert.message));
  box.setInformativeText(QString::fromStdU16String(alert.informativeText));
  if (auto* const label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))) {
    label->setTextFormat(Qt::PlainText);  // which the box leaves to guessing
  }
  box.setAccessibleDescription(box.text() + u' ' + box.informativeText());
  std::vector<QAbstractButton*> buttons;
  for (const auto& title : alert.buttons) {
    const auto role = buttons.empty() ? QMessageBox::AcceptRole : QMessageBox::RejectRole;
    buttons.push_back(box.addButton(QString::fromStdU16String(title), role));
  }
  if (!buttons.empty()) {
    box.setDefaultButton(qobject_cast<QPushButton*>(buttons.front()));
    box.setEscapeButton(buttons.back());
  }
  assignMnemonics(box);
  box.show();
  focus_.take(box.winId());
  box.exec();
  const auto chosen = std::ranges::find(buttons, box.clickedButton());
  if (chosen != buttons.end()) return static_cast<std::size_t>(chosen - buttons.begin());
  return buttons.empty() ? 0 : buttons.size() - 1;
}

}  // namespace quorlo
