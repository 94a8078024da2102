#pragma once

#include "platform/status_item.h"

#include <utility>

namespace quorlo {

class FakeStatusItem : public StatusItem {
 public:
  void setVisible(bool isVisible) override { visible = isVisible; }
  void setImage(StatusImage newImage) override { image = newImage; }
  void setToolTip(const std::u16string& text) override { toolTip = text; }
  void setClickHandler(std::function<void()> clicked) override { clicked_ = std::move(clicked); }
  void setMenu(std::vector<StatusMenuItem> items) override { menu = std::move(items); }

  void click() const {
    if (visible && clicked_) clicked_();
  }

  bool visible = false;
  StatusImage image = StatusImage::regular;
  std::u16string toolTip;
  std::vector<StatusMenuItem> menu;

 private:
  std::function<void()> clicked_;
};

}  // namespace quorlo
