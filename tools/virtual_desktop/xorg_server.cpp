#include "virtual_desktop/xorg_server.h"

#include "virtual_desktop/temp_dir.h"
#include "virtual_desktop/wait.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace quorlo {

namespace {

std::string inputDevice(const std::string& name, const std::string& type,
                        const std::filesystem::path& directory) {
  return "Section \"InputDevice\"\n  Identifier \"" + name + "\"\n  Driver \"inputtest\"\n" +
         "  Option \"DeviceType\" \"" + type + "\"\n  Option \"SocketPath\" \"" +
         (directory / name).string() +
         "\"\n  Option \"XkbRules\" \"evdev\"\n  Option \"XkbModel\" \"pc105\"\n" +
         "  Option \"XkbLayout\" \"us\"\nEndSection\n";
}

std::string configuration(const std::filesystem::path& directory) {
  const std::string size = std::to_string(XorgServer::kWidth) + "x" + std::to_string(XorgServer::kHeight);
  return std::string(R"(Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoEnableDevices" "false"
  Option "DontVTSwitch" "true"
  Option "BlankTime" "0"
  Option "StandbyTime" "0"
EndSection
)") + inputDevice(XorgServer::kKeyboardSocket, "Keyboard", directory) +
         inputDevice(XorgServer::kSecondKeyboardSocket, "Keyboard", directory) +
         inputDevice(XorgServer::kPointerSocket, "PointerAbsolute", directory) + R"(Section "Monitor"
  Identifier "monitor"
  HorizSync 5.0-1000.0
  VertRefresh 5.0-200.0
  Modeline ")" +
         size + R"(" 83.46 1280 1344 1480 1680 800 801 804 828
EndSection
Section "Device"
  Identifier "card"
  Driver "dummy"
  VideoRam 65536
EndSection
Section "Screen"
  Identifier "screen"
  Device "card"
  Monitor "monitor"
  DefaultDepth 24
  SubSection "Display"
    Depth 24
    Modes ")" +
         size + R"("
  EndSubSection
EndSection
Section "ServerLayout"
  Identifier "layout"
  Screen "screen"
  InputDevice "keyboard" "CoreKeyboard"
  InputDevice "keyboard2" "SendCoreEvents"
  InputDevice "pointer" "CorePointer"
EndSection
)";
}

std::string xorgProgram() {
  // Debian's /usr/bin/Xorg may go through a wrapper that wants a console of its own.
  const char* const kDirect = "/usr/lib/xorg/Xorg";
  return access(kDirect, X_OK) == 0 ? kDirect : "Xorg";
}

Command serverCommand(const std::filesystem::path& directory, const std::vector<std::string>& moreArguments,
                      int (&displayPipe)[2]) {
  if (pipe2(displayPipe, O_CLOEXEC) != 0) throw std::runtime_error("Cannot create a pipe");
  writeFile(directory / "xorg.conf", configuration(directory));
  std::vector<std::string> words{xorgProgram(), "-noreset",
                                 "-novtswitch", "-sharevts",
                                 "-nolisten",   "tcp",
                                 "-config",     directory / "xorg.conf",
                                 "-logfile",    directory / "xorg.log",
                                 "-displayfd",  std::to_string(displayPipe[1])};
  words.insert(words.end(), moreArguments.begin(), moreArguments.end());
  return {.words = std::move(words),
          .variables = {},
          .output = directory / "xorg.out",
          .inheritedFd = displayPipe[1],
          .deathSignal = SIGTERM};
}

std::string tail(const std::string& text) {
  return text.size() > 3000 ? text.substr(text.size() - 3000) : text;
}

}  // namespace

XorgServer::XorgServer(const std::filesystem::path& directory, const std::vector<std::string>& moreArguments)
    : process_(serverCommand(directory, moreArguments, displayPipe_)) {
  close(displayPipe_[1]);
  fcntl(displayPipe_[0], F_SETFL, O_NONBLOCK);
  std::string number;  // the server writes "3\n" once it listens
  waitUntil([&] {
    char bytes[16];
    const auto got = read(displayPipe_[0], bytes, sizeof bytes);
    if (got > 0) number.append(bytes, static_cast<size_t>(got));
    return number.ends_with('\n') || !process_.running();
  });
  close(displayPipe_[0]);
  if (!number.ends_with('\n')) {
    throw std::runtime_error("The X server did not start. The end of its log:\n" +
                             tail(readFile(directory / "xorg.out")) + tail(readFile(directory / "xorg.log")));
  }
  number.pop_back();
  display_ = ":" + number;
}

}  // namespace quorlo
