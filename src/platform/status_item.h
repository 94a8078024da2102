#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

enum class StatusImage {
  regular,   // "Statusbar_Quorlo"
  hollowed,  // "Statusbar_Quorlo_Hollowed"
};

// A line of the plain menu; one without a title is a separator.
struct StatusMenuItem {
  std::u16string title = {};
  std::string_view image = {};                   // the name of a symbol; empty for none
  std::optional<bool> isChecked = std::nullopt;  // without a value the line has no check mark at all
  std::function<void()> chosen = nullptr;
};

// The program's icon in the tray. Main thread.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  // A visible item comes to every tray that appears, also to one that starts later or again.
  virtual void setVisible(bool visible) = 0;
  virtual void setImage(StatusImage image) = 0;
  virtual void setToolTip(const std::u16string& text) = 0;
  // Called on the main thread when the user clicks the icon.
  virtual void setClickHandler(std::function<void()> clicked) = 0;
  // The menu by the other mouse button, and the only thing that some trays offer. Trays fetch it at any time,
  // so it is set anew whenever a check mark changes.
  virtual void setMenu(std::vector<StatusMenuItem> items) = 0;
};

}  // namespace quorlo
