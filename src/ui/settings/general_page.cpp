#include "app/settings/launch_at_login.h"
#include "app/settings/settings_controller.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/settings_pages.h"

#include <QHBoxLayout>
#include <QMessageBox>
#include <QPushButton>

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

    beginGroup(u"Help");
    auto* const buttons = new QWidget;
    auto* const row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    for (const auto& [text, action] : {std::pair(u"Show the Welcome Window", services.showWelcome),
                                       std::pair(u"About Quorlo", services.showAbout)}) {
      auto* const button = new QPushButton(localizedText(text));
      connect(button, &QPushButton::clicked, this, [act = action] { act(); });
      row->addWidget(button);
    }
    row->addStretch();
    addWidget(buttons);
  }

 protected:
  // The desktop's own settings change the entry too.
  void showEvent(QShowEvent* event) override {
    refresh();
    SettingsPage::showEvent(event);
  }

 private:
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
