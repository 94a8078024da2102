#pragma once

#include <string_view>

namespace quorlo {

// The windows that the program opens by identifier.
inline constexpr std::string_view kSnippetEditorWindow = "Snippet-Editor";
inline constexpr std::string_view kWelcomeWindow = "Welcome";
inline constexpr std::string_view kSettingsWindow = "Settings";

// The program's windows. Main thread.
class AppWindows {
 public:
  virtual ~AppWindows() = default;

  // Shows the window, which is made on first use, and brings it to the front.
  virtual void openWindow(std::string_view identifier) = 0;

  // False too for one that was never opened, is hidden or is minimized.
  virtual bool isWindowVisible(std::string_view identifier) const = 0;

  // Closes every dialog that belongs to a window, as if the user had cancelled it.
  virtual void closeSheets() = 0;

  // Brings what the user is editing into its record. False when it cannot be taken over as it is; the
  // window says why.
  virtual bool commitEditing() = 0;
};

}  // namespace quorlo
