#pragma once

#include "platform/status_item.h"

#include <utility>

namespace quorlo {

class FakeStatusItem : public StatusItem {
 public:
  void setVisible(bool isVisible) override { visible = isVisible; }
  void setToolTip(const std::u16string& text) override { toolTip = text; }
  void setClickHandler(std::function<void()> clicked) override { clicked_ = std::move(clicked); }

  void click() const {
    if (visible && clicked_) clicked_();
  }

  bool visible = false;
  std::u16string toolTip;

 private:
  std::function<void()> clicked_;
};

}  // namespace quorlo
