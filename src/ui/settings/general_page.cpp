#include "app/settings/launch_at_login.h"
#include "app/settings/settings_controller.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/settings_pages.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include <functional>
#include <initializer_list>
#include <utility>

namespace quorlo {
namespace {

class GeneralPage : public SettingsPage {
 public:
  explicit GeneralPage(const SettingsServices& services) : SettingsPage(services.settings, u"General") {
    auto& launch = services.launchAtLogin;
    beginGroup(u"Start");
    addSwitch(
        u"Launch at login", [&launch] { return launch.isEnabled(); },
        [this, &launch](bool on) {
          if (const auto done = launch.setEnabled(on); !done) complain(done.error());
        });
    launchChanges_ = launch.observe([this] { refresh(); });
    addSwitch(u"Show app in menu bar", &SettingsController::showAppInMenuBar,
              &SettingsController::setShowAppInMenuBar,
              u"Without it, the menu opens by its hot key, or when you start Quorlo once more.");

    beginGroup(u"Backups");
    addSwitch(u"Keep backups of the library", &SettingsController::keepsBackups,
              &SettingsController::setKeepsBackups,
              u"Quorlo makes one on each day on which something was changed, and keeps the last 10.");
    auto* const folder = new QLineEdit(QString::fromStdString(services.backupFolder.string()));
    folder->setReadOnly(true);
    folder->setCursorPosition(0);
    addField(u"Folder:", folder);
    addButtons({{u"Show Backups…", services.showBackups}});

    beginGroup(u"Help");
    addButtons({{u"Show the Welcome Window", services.showWelcome}, {u"About Quorlo", services.showAbout}});
  }

 protected:
  // The desktop's own settings change the entry too.
  void showEvent(QShowEvent* event) override {
    refresh();
    SettingsPage::showEvent(event);
  }

 private:
  void addButtons(std::initializer_list<std::pair<const char16_t*, std::function<void()>>> offered) {
    auto* const buttons = new QWidget;
    auto* const row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    for (const auto& [text, action] : offered) {
      auto* const button = new QPushButton(localizedText(text));
      connect(button, &QPushButton::clicked, this, [act = action] { act(); });
      row->addWidget(button);
    }
    row->addStretch();
    addWidget(buttons);
  }

  void complain(const Error& error) {
    auto* const box =
        new QMessageBox(QMessageBox::Warning, localizedText(u"Launch at login could not be changed."),
                        localizedText(u"Launch at login could not be changed."), QMessageBox::Ok, this);
    box->setInformativeText(QString::fromStdString(error.message));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
  }

  Subscription launchChanges_;
};

}  // namespace

SettingsPage* makeGeneralPage(const SettingsServices& services) {
  return new GeneralPage(services);
}

}  // namespace quorlo
