#include "virtual_desktop/virtual_desktop.h"

#include "virtual_desktop/wait.h"

#include <xcb/xcb.h>

#include <stdexcept>
#include <utility>

namespace quorlo {

namespace {

// No service directories: nothing is started behind the tests' back.
std::string busConfiguration(const std::filesystem::path& socket) {
  return "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
         "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n<busconfig><type>session</type>"
         "<listen>unix:path=" +
         socket.string() +
         "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow send_destination=\"*\" "
         "eavesdrop=\"true\"/><allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>\n";
}

// The window manager without key bindings of its own, so that every key reaches the programs; a click
// raises and focuses.
constexpr const char* kOpenboxConfiguration = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew><followMouse>no</followMouse></focus>
  <placement><policy>Smart</policy></placement>
  <theme><name>Clearlooks</name></theme>
  <keyboard/>
  <mouse>
    <context name="Client">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
    </context>
    <context name="Titlebar">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
    </context>
  </mouse>
</openbox_config>
)";

}  // namespace

VirtualDesktop::VirtualDesktop(const std::vector<std::string>& serverArguments)
    : server_(directory_.path(), serverArguments) {
  const auto run = directory_ / "run";
  for (const auto& path : {home(), configHome(), dataHome(), home() / ".cache", run}) {
    std::filesystem::create_directories(path);
  }
  std::filesystem::permissions(run, std::filesystem::perms::owner_all);
  const auto busSocket = run / "bus";
  variables_ = {{"DISPLAY", server_.display()},
                {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + busSocket.string()},
                {"HOME", home()},
                {"XDG_CONFIG_HOME", configHome()},
                {"XDG_DATA_HOME", dataHome()},
                {"XDG_CACHE_HOME", home() / ".cache"},
                {"XDG_RUNTIME_DIR", run},
                {"XDG_SESSION_TYPE", "x11"},
                {"XDG_CURRENT_DESKTOP", ""},
                {"WAYLAND_DISPLAY", ""},
                {"XAUTHORITY", ""},
                {"SESSION_MANAGER", ""},
                {"LANG", "C.UTF-8"},
                {"LC_ALL", "C.UTF-8"},
                {"LANGUAGE", ""},
                {"QT_QPA_PLATFORM", "xcb"},
                {"QT_IM_MODULE", "compose"},
                {"GTK_IM_MODULE", "gtk-im-context-simple"},
                {"XMODIFIERS", ""},
                {"GDK_BACKEND", "x11"},
                {"GSETTINGS_BACKEND", "memory"},
                {"GTK_A11Y", "none"},
                {"NO_AT_BRIDGE", "1"},
                {"LIBGL_ALWAYS_SOFTWARE", "1"}};

  connection_ = {xcb_connect(server_.display().c_str(), nullptr), xcb_disconnect};
  if (xcb_connection_has_error(connection_.get())) {
    throw std::runtime_error("Cannot connect to the X server " + server_.display() + " just started");
  }
  writeFile(run / "bus.conf", busConfiguration(busSocket));
  bus_.emplace(
      commandFor({"dbus-daemon", "--nofork", "--nopidfile", "--config-file=" + (run / "bus.conf").string()}));
  writeFile(directory_ / "openbox.xml", kOpenboxConfiguration);
  windowManager_.emplace(startWindowManager());
  setLayout("us");

  windows_ = std::make_unique<WindowList>(connection_.get());
  const auto layoutNow = [this]() -> const KeyLayout& { return layout(); };
  keyboard_ = std::make_unique<VirtualKeyboard>(directory_ / XorgServer::kKeyboardSocket, layoutNow);
  secondKeyboard_ =
      std::make_unique<VirtualKeyboard>(directory_ / XorgServer::kSecondKeyboardSocket, layoutNow);
  pointer_ = std::make_unique<VirtualPointer>(directory_ / XorgServer::kPointerSocket, XorgServer::kWidth,
                                              XorgServer::kHeight);
  if (!waitUntil([&] { return windows_->managerRuns() && std::filesystem::exists(busSocket); })) {
    throw std::runtime_error("The window manager or the session bus did not start:\n" +
                             readFile(directory_ / "programs.log"));
  }
}

VirtualDesktop::~VirtualDesktop() = default;

Command VirtualDesktop::commandFor(std::vector<std::string> words) const {
  return {.words = std::move(words), .variables = variables_, .output = directory_ / "programs.log"};
}

ChildProcess VirtualDesktop::start(std::vector<std::string> words,
                                   const std::filesystem::path& output) const {
  auto command = commandFor(std::move(words));
  if (!output.empty()) command.output = output;
  return ChildProcess(command);
}

ChildProcess VirtualDesktop::startWindowManager() const {
  return start({"openbox", "--replace", "--sm-disable", "--config-file", directory_ / "openbox.xml"});
}

void VirtualDesktop::replaceWindowManager() {
  auto next = startWindowManager();
  const bool hasReplaced = waitUntil(
      [&] { return !windowManager_->running() && windows_->managerRuns() && !windows_->all().empty(); });
  if (!hasReplaced) throw std::runtime_error("The window manager was not replaced");
  windowManager_.emplace(std::move(next));
}

void VirtualDesktop::setLayout(const std::string& layout, const std::string& options) {
  // The empty option clears those set before.
  std::vector<std::string> words{"setxkbmap", "-rules", "evdev",   "-model", "pc105",
                                 "-layout",   layout,   "-option", ""};
  if (const auto variant = layout.find('('); variant != std::string::npos) {
    words[6] = layout.substr(0, variant);
    words.insert(words.end(), {"-variant", layout.substr(variant + 1, layout.size() - variant - 2)});
  }
  if (!options.empty()) words.insert(words.end(), {"-option", options});
  runProgram({.words = words, .variables = variables_, .output = {}});
  forgetLayout();
}

const KeyLayout& VirtualDesktop::layout() {
  if (!layout_) layout_ = std::make_unique<KeyLayout>(connection_.get());
  return *layout_;
}

void VirtualDesktop::screenshot(const std::filesystem::path& file) const {
  runProgram({.words = {"scrot", "--overwrite", file}, .variables = variables_, .output = {}});
}

}  // namespace quorlo
