#pragma once

#include "virtual_desktop/child_process.h"
#include "virtual_desktop/key_layout.h"
#include "virtual_desktop/temp_dir.h"
#include "virtual_desktop/virtual_keyboard.h"
#include "virtual_desktop/window_list.h"
#include "virtual_desktop/xorg_server.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct xcb_connection_t;

namespace quorlo {

// A whole desktop of its own: X server, window manager, session bus, home directory, two keyboards and a
// pointer. Nothing of the user's session is touched, and nothing is left when it ends.
class VirtualDesktop {
 public:
  // Returns when a program can be started on it; the keyboards have the layout "us". Throws
  // std::runtime_error that says which part did not start and the end of its log.
  // More arguments go to the X server, for one with a fault: {"-extension", "XTEST"} leaves an extension out.
  explicit VirtualDesktop(const std::vector<std::string>& serverArguments = {});
  ~VirtualDesktop();
  VirtualDesktop(const VirtualDesktop&) = delete;
  VirtualDesktop& operator=(const VirtualDesktop&) = delete;

  const std::string& display() const { return server_.display(); }
  // What a program needs to live on this desktop; an empty value means "removed".
  const Variables& variables() const { return variables_; }
  std::filesystem::path home() const { return directory_ / "home"; }
  std::filesystem::path configHome() const { return home() / ".config"; }
  std::filesystem::path dataHome() const { return home() / ".local" / "share"; }
  const std::filesystem::path& directory() const { return directory_.path(); }  // for files of the tests

  // Starts a program; what it writes goes to output, or to "programs.log" in directory().
  ChildProcess start(std::vector<std::string> words, const std::filesystem::path& output = {}) const;

  VirtualKeyboard& keyboard() { return *keyboard_; }
  VirtualKeyboard& secondKeyboard() { return *secondKeyboard_; }
  VirtualPointer& pointer() { return *pointer_; }
  WindowList& windows() { return *windows_; }
  xcb_connection_t* connection() const { return connection_.get(); }
  XorgServer& server() { return server_; }

  ChildProcess& windowManager() { return *windowManager_; }
  // Starts another window manager in the place of the one that runs or has ended, and returns when it manages
  // the windows. Until one of them is activated, the window manager has the keyboard focus.
  void replaceWindowManager();

  // As setxkbmap takes them: "us", "de", "us(intl)"; options such as "compose:ralt".
  void setLayout(const std::string& layout, const std::string& options = {});
  // Reads the keyboard map again, when a program has changed it by other means.
  void forgetLayout() { layout_.reset(); }

  // Writes a PNG file. Throws std::runtime_error.
  void screenshot(const std::filesystem::path& file) const;

 private:
  const KeyLayout& layout();
  ChildProcess startWindowManager() const;
  Command commandFor(std::vector<std::string> words) const;

  TempDir directory_;
  XorgServer server_;
  Variables variables_;
  std::shared_ptr<xcb_connection_t> connection_;
  std::optional<ChildProcess> bus_;
  std::optional<ChildProcess> windowManager_;
  std::unique_ptr<KeyLayout> layout_;
  std::unique_ptr<VirtualKeyboard> keyboard_;
  std::unique_ptr<VirtualKeyboard> secondKeyboard_;
  std::unique_ptr<VirtualPointer> pointer_;
  std::unique_ptr<WindowList> windows_;
};

}  // namespace quorlo
