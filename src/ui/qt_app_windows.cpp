#include "ui/qt_app_windows.h"

#include <QApplication>
#include <QDialog>
#include <QWidget>

#include <utility>

namespace quorlo {

QtAppWindows::QtAppWindows() = default;
QtAppWindows::~QtAppWindows() = default;

void QtAppWindows::setMaker(std::string_view identifier, Maker make) {
  windows_[std::string(identifier)].make = std::move(make);
}

void QtAppWindows::setCommitEditing(std::string_view identifier, std::function<bool(QWidget&)> commit) {
  windows_[std::string(identifier)].commitEditing = std::move(commit);
}

void QtAppWindows::destroyAll() {
  for (auto& [identifier, window] : windows_) window.widget.reset();
}

QWidget* QtAppWindows::window(std::string_view identifier) const {
  const auto found = windows_.find(identifier);
  return found != windows_.end() ? found->second.widget.get() : nullptr;
}

void QtAppWindows::openWindow(std::string_view identifier) {
  const auto found = windows_.find(identifier);
  if (found == windows_.end() || !found->second.make) return;
  auto& [make, commit, widget] = found->second;
  if (!widget) widget = make();
  widget->setWindowState(widget->windowState() & ~Qt::WindowMinimized);
  widget->show();
  widget->raise();
  widget->activateWindow();
}

bool QtAppWindows::isWindowVisible(std::string_view identifier) const {
  const auto found = windows_.find(identifier);
  if (found == windows_.end() || !found->second.widget) return false;
  return found->second.widget->isVisible() && !found->second.widget->isMinimized();
}

void QtAppWindows::closeSheets() {
  while (auto* const sheet = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
    sheet->reject();
    if (sheet->isVisible()) return;  // it insists on an answer
  }
}

bool QtAppWindows::commitEditing() {
  for (const auto& [identifier, window] : windows_) {
    if (window.widget && window.commitEditing && !window.commitEditing(*window.widget)) return false;
  }
  return true;
}

}  // namespace quorlo
