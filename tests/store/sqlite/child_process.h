#pragma once

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

#include <functional>
#include <optional>
#include <string>

namespace quorlo {

// One end of a channel between two processes, for numbers and for text.
class Channel {
 public:
  explicit Channel(int descriptor) : descriptor_(descriptor) {}
  Channel(const Channel&) = delete;
  Channel& operator=(const Channel&) = delete;
  ~Channel() { ::close(descriptor_); }

  void send(int number) const { write(&number, sizeof number); }
  void send(const std::string& text) const { write(text.data(), text.size()); }

  // Nothing when the other end is gone.
  std::optional<int> number() const {
    int number = 0;
    if (::recv(descriptor_, &number, sizeof number, MSG_WAITALL) != sizeof number) return std::nullopt;
    return number;
  }
  std::string textToTheEnd() const {
    std::string text;
    char buffer[512];
    for (ssize_t count = 0; (count = ::recv(descriptor_, buffer, sizeof buffer, 0)) > 0;) {
      text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  void write(const void* data, std::size_t size) const {
    if (::send(descriptor_, data, size, MSG_NOSIGNAL) != static_cast<ssize_t>(size)) ::_exit(3);
  }
  int descriptor_;
};

// A child of this process that does `work` and ends without further ado. Killed when it is still there at
// the end. This process must not have a database open when it starts one.
class ChildProcess {
 public:
  explicit ChildProcess(const std::function<void(const Channel&)>& work) {
    int ends[2] = {-1, -1};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) std::abort();
    process_ = ::fork();
    if (process_ == 0) {
      ::close(ends[0]);
      {
        const Channel channel(ends[1]);
        work(channel);
      }
      ::_exit(0);
    }
    ::close(ends[1]);
    channel_.emplace(ends[0]);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() { kill(); }

  const Channel& channel() const { return *channel_; }

  void kill() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    wait();
  }

  // True when it came to its end by itself.
  bool wait() {
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = 0;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }

 private:
  pid_t process_ = 0;
  std::optional<Channel> channel_;
};

// What `work` returns in a child process; "died" when it did not come to its end.
inline std::string inChild(const std::function<std::string()>& work) {
  ChildProcess child([&work](const Channel& parent) { parent.send(work()); });
  const auto answer = child.channel().textToTheEnd();
  return child.wait() ? answer : "died";
}

}  // namespace quorlo
