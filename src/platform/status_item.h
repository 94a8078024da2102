#pragma once

#include <functional>
#include <string>

namespace quorlo {

// The program's icon in the tray. Main thread.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  virtual void setVisible(bool visible) = 0;
  virtual void setToolTip(const std::u16string& text) = 0;
  // Called on the main thread when the user clicks the icon.
  virtual void setClickHandler(std::function<void()> clicked) = 0;
};

}  // namespace quorlo
