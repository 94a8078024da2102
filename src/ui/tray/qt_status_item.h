#pragma once

#include "base/life_token.h"
#include "platform/status_item.h"

#include <memory>

namespace quorlo {

class MainQueue;
class UserDefaults;
class UserNotifications;

// The icon in the tray of the session bus (StatusNotifierItem) where there is one, else in a tray of the
// display server (XEmbed). Follows trays that come, go and start again; a desktop without any is told
// once ever how to open the menu. Needs the QApplication.
class QtStatusItem final : public StatusItem {
 public:
  struct Dependencies {
    MainQueue& queue;
    UserNotifications& notifications;
    UserDefaults& defaults;
  };

  // The references must outlive the item, which is not visible at first.
  explicit QtStatusItem(const Dependencies& dependencies);
  ~QtStatusItem() override;

  void setVisible(bool visible) override;
  void setImage(StatusImage image) override;
  void setToolTip(const std::u16string& text) override;
  void setClickHandler(std::function<void()> clicked) override;
  void setMenu(std::vector<StatusMenuItem> items) override;

 private:
  class Icon;

  void tellOfMissingTray();

  Dependencies use_;
  std::unique_ptr<Icon> icon_;
  bool willLookForTray_ = false;
  LifeToken life_;
};

}  // namespace quorlo
