// quorlo-virtual-desktop: a virtual desktop to be driven by hand.
//
//   quorlo-virtual-desktop SOCKET             starts one, prints its environment as shell exports and obeys
//                                             lines from standard input and from SOCKET until "quit"
//   quorlo-virtual-desktop send SOCKET LINE   sends one line and prints the answer; status 0 when it is "ok"
#include "virtual_desktop/virtual_desktop.h"
#include "virtual_desktop/wait.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace quorlo {
namespace {

constexpr const char* kHelp =
    "type TEXT | slowly MILLISECONDS TEXT | key NAME or CHORD (Return, Ctrl+s) | down NAME | up NAME | "
    "click X Y [BUTTON] | move X Y | layout NAME [OPTIONS] | start COMMAND (waits for its window) | "
    "run COMMAND (waits for no window) | windows | focus CLASS | screenshot FILE | quit";

class DesktopConsole {
 public:
  explicit DesktopConsole(const std::vector<std::string>& serverArguments) : desktop_(serverArguments) {}

  // The answer to one line: "ok", "ok" and lines of output, or "error: ...".
  std::string obey(const std::string& line) {
    try {
      return "ok" + perform(line);
    } catch (const std::exception& problem) {
      return std::string("error: ") + problem.what();
    }
  }

  void printEnvironment() {
    for (const auto& [name, value] : desktop_.variables()) {
      if (value.empty()) {
        std::cout << "unset " << name << "\n";
      } else {
        std::cout << "export " << name << "='" << value << "'\n";
      }
    }
    std::cout << "# ready" << std::endl;
  }

  bool serverRuns() { return desktop_.server().running(); }

 private:
  std::string perform(const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    words >> verb;
    const std::string rest = line.size() > verb.size() ? line.substr(verb.size() + 1) : "";
    auto& keyboard = desktop_.keyboard();
    if (verb == "type") {
      keyboard.type(rest);
    } else if (verb == "slowly") {
      int milliseconds = 0;
      words >> milliseconds;
      keyboard.type(rest.substr(std::min(rest.size(), rest.find(' ') + 1)),
                    std::chrono::milliseconds(milliseconds));
    } else if (verb == "key") {
      keyboard.tap(rest);
    } else if (verb == "down") {
      keyboard.press(rest);
    } else if (verb == "up") {
      keyboard.release(rest);
    } else if (verb == "click" || verb == "move") {
      int x = 0, y = 0, button = 1;
      words >> x >> y >> button;
      if (verb == "move") desktop_.pointer().moveTo(x, y);
      if (verb == "click") desktop_.pointer().click(x, y, words.fail() ? 1 : button);
    } else if (verb == "layout") {
      std::string layout, options;
      words >> layout >> options;
      desktop_.setLayout(layout, options);
    } else if (verb == "start") {
      programs_.push_back(desktop_.start({"sh", "-c", "exec " + rest}));
      desktop_.windows().activate(desktop_.windows().waitForWindowOf(programs_.back().pid()));
    } else if (verb == "run") {
      programs_.push_back(desktop_.start({"sh", "-c", "exec " + rest}));
    } else if (verb == "windows") {
      return list();
    } else if (verb == "focus") {
      focus(rest);
    } else if (verb == "screenshot") {
      desktop_.screenshot(rest);
    } else {
      throw std::runtime_error("Commands: " + std::string(kHelp));
    }
    return {};
  }

  std::string list() {
    std::ostringstream out;
    auto& windows = desktop_.windows();
    for (const auto window : windows.all()) {
      const auto place = windows.placeOf(window);
      out << "\n0x" << std::hex << window << std::dec << " pid " << windows.processOf(window) << " "
          << place.width << "x" << place.height << "+" << place.x << "+" << place.y << " "
          << windows.classOf(window) << " \"" << windows.titleOf(window) << "\""
          << (window == windows.active() ? " (active)" : "");
    }
    return out.str();
  }

  void focus(const std::string& name) {
    auto& windows = desktop_.windows();
    for (const auto window : windows.all()) {
      if (windows.classOf(window) == name) return windows.activate(window);
    }
    throw std::runtime_error("No window has the class " + name);
  }

  VirtualDesktop desktop_;
  std::vector<ChildProcess> programs_;
};

sockaddr_un addressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) throw std::runtime_error("The path is too long: " + path);
  path.copy(address.sun_path, path.size());
  return address;
}

std::string readLine(int fd) {
  std::string line;
  char byte = 0;
  while (read(fd, &byte, 1) == 1 && byte != '\n') line += byte;
  return line;
}

int send(const std::string& path, const std::string& line) {
  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const auto address = addressOf(path);
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("No virtual desktop listens at " + path);
  }
  const std::string message = line + "\n";
  if (write(fd, message.data(), message.size()) < 0)
    throw std::runtime_error("The virtual desktop does not listen");
  std::string answer;
  char bytes[4096];
  for (ssize_t got; (got = read(fd, bytes, sizeof bytes)) > 0;)
    answer.append(bytes, static_cast<size_t>(got));
  close(fd);
  std::cout << answer << std::endl;
  return answer.starts_with("ok") ? 0 : 1;
}

int serve(const std::string& path, const std::vector<std::string>& serverArguments) {
  sigset_t ending;
  sigemptyset(&ending);
  sigaddset(&ending, SIGTERM);
  sigaddset(&ending, SIGINT);
  sigaddset(&ending, SIGHUP);
  sigprocmask(SIG_BLOCK, &ending, nullptr);
  DesktopConsole console(serverArguments);
  unlink(path.c_str());
  const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const auto address = addressOf(path);
  if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(listener, 8) != 0) {
    throw std::runtime_error("Cannot listen at " + path);
  }
  console.printEnvironment();
  pollfd sources[] = {
      {STDIN_FILENO, POLLIN, 0}, {listener, POLLIN, 0}, {signalfd(-1, &ending, SFD_CLOEXEC), POLLIN, 0}};
  bool done = false;
  while (!done && console.serverRuns()) {
    if (poll(sources, 3, 1000) <= 0) continue;
    if (sources[2].revents != 0) break;
    if (sources[0].revents != 0) {
      const auto line = readLine(STDIN_FILENO);
      // Without a terminal or a writer there is nothing more to read; the socket stays.
      if (line.empty()) sources[0].fd = -1;
      if (line == "quit") break;
      if (!line.empty()) std::cout << console.obey(line) << std::endl;
    }
    if (sources[1].revents != 0) {
      const int fd = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
      const auto line = readLine(fd);
      done = line == "quit";
      const auto answer = done ? "ok" : console.obey(line);
      if (write(fd, answer.data(), answer.size()) < 0)
        std::cerr << "The sender did not wait for the answer\n";
      close(fd);
    }
  }
  close(listener);
  unlink(path.c_str());
  return 0;
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  try {
    const std::vector<std::string> words(argv + 1, argv + argc);
    std::signal(SIGPIPE, SIG_IGN);
    if (words.size() == 3 && words[0] == "send") return quorlo::send(words[1], words[2]);
    if (!words.empty()) return quorlo::serve(words[0], {words.begin() + 1, words.end()});
    std::cerr
        << "usage: quorlo-virtual-desktop SOCKET [ARGUMENTS OF THE X SERVER]\n       quorlo-virtual-desktop send SOCKET LINE\n"
        << "lines: " << quorlo::kHelp << "\n";
    return 2;
  } catch (const std::exception& problem) {
    std::cerr << "quorlo-virtual-desktop: " << problem.what() << "\n";
    return 1;
  }
}
