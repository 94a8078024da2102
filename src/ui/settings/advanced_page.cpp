#include "app/settings/settings_controller.h"
#include "platform/environment/environment.h"
#include "platform/workspace.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/settings_pages.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QUrl>

#include <filesystem>
#include <system_error>

namespace quorlo {
namespace {

class AdvancedPage : public SettingsPage {
 public:
  explicit AdvancedPage(const SettingsServices& services)
      : SettingsPage(services.settings, u"Advanced"), services_(services) {
    beginGroup(u"Finding faults");
    addSwitch(
        u"Debug mode", &SettingsController::debugModeEnabled, &SettingsController::setDebugModeEnabled,
        u"Quorlo writes a detailed log, which may hold text of snippets that you insert. Debug mode ends by itself "
        u"after 24 hours.");
    // Where the desktop opens no log, the user still knows where it is.
    auto* const path = new QLineEdit(QString::fromStdString(logFile().string()));
    path->setReadOnly(true);
    path->setCursorPosition(0);
    path->setMinimumWidth(20 * fontMetrics().lineSpacing());
    addField(u"Log file:", path);
    auto* const buttons = new QWidget;
    auto* const row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    auto* const log = new QPushButton(localizedText(u"Show Log"));
    auto* const folder = new QPushButton(localizedText(u"Open Data Folder"));
    row->addWidget(log);
    row->addWidget(folder);
    row->addStretch();
    addWidget(buttons);
    notice_ = addHint(u"There is no log yet. It is written while debug mode is on.");
    notice_->hide();
    connect(log, &QPushButton::clicked, this, [this] { open(logFile()); });
    connect(folder, &QPushButton::clicked, this, [this] { open(services_.environment.dataDirectory()); });
  }

 private:
  std::filesystem::path logFile() const { return services_.environment.dataDirectory() / "Quorlo.log"; }

  void open(const std::filesystem::path& path) {
    std::error_code failure;
    const bool exists = std::filesystem::exists(path, failure);
    const auto address = QUrl::fromLocalFile(QString::fromStdString(path.string())).toEncoded().toStdString();
    const bool isOpen = exists && services_.workspace.openURL(address);
    notice_->setText(exists ? localizedText(u"Your desktop has no program that opens this: %1")
                                  .arg(QString::fromStdString(path.string()))
                            : localizedText(u"There is no log yet. It is written while debug mode is on."));
    notice_->setVisible(!isOpen);
  }

  SettingsServices services_;
  QLabel* notice_;
};

}  // namespace

SettingsPage* makeAdvancedPage(const SettingsServices& services) {
  return new AdvancedPage(services);
}

}  // namespace quorlo
