#include "x11/connection/x_event_loop.h"

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <memory>

namespace quorlo {

XEventLoop::XEventLoop(XConnection& connection, std::string threadName)
    : connection_(connection),
      threadName_(std::move(threadName)),
      wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

XEventLoop::~XEventLoop() {
  stop();
  close(wakeUp_);
}

void XEventLoop::start(EventHandler onEvent, Task onConnectionLost, Task onEventsHandled) {
  onEvent_ = std::move(onEvent);
  onConnectionLost_ = std::move(onConnectionLost);
  onEventsHandled_ = std::move(onEventsHandled);
  thread_ = std::thread([this] { run(); });
  pthread_setname_np(thread_.native_handle(), threadName_.c_str());
}

void XEventLoop::stop() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  eventfd_write(wakeUp_, 1);
  if (thread_.joinable()) thread_.join();
}

void XEventLoop::post(Task task) {
  {
    const std::lock_guard lock(mutex_);
    if (stopping_) return;
    tasks_.push_back(std::move(task));
  }
  eventfd_write(wakeUp_, 1);
}

bool XEventLoop::postAndWait(Task task, std::chrono::milliseconds atMost) {
  struct Done {
    std::mutex mutex;
    std::condition_variable changed;
    bool yes = false;
  };
  const auto done = std::make_shared<Done>();
  post([done, task = std::move(task)] {
    task();
    const std::lock_guard lock(done->mutex);
    done->yes = true;
    done->changed.notify_one();
  });
  std::unique_lock lock(done->mutex);
  return done->changed.wait_until(lock, Clock::now() + atMost, [&] { return done->yes; });
}

bool XEventLoop::hasCaughtUp() const {
  // In this order: what the thread has taken from the connection in between it has taken while busy.
  pollfd connection{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
  const bool hasArrivals = poll(&connection, 1, 0) > 0;
  return !hasArrivals && !busy_;
}

bool XEventLoop::catchUp(std::chrono::milliseconds atMost) {
  if (hasCaughtUp()) return true;
  return postAndWait([this] { readEvents(); }, atMost);
}

XEventLoop::TimerId XEventLoop::runAt(Clock::time_point due, Task task) {
  timers_.emplace(std::pair(due, ++lastTimer_), std::move(task));
  return lastTimer_;
}

void XEventLoop::cancel(TimerId timer) {
  std::erase_if(timers_, [timer](const auto& entry) { return entry.first.second == timer; });
}

void XEventLoop::watch(int descriptor, Task onReadable) {
  watched_ = descriptor;
  onWatchedReadable_ = std::move(onReadable);
}

void XEventLoop::run() {
  while (true) {
    runTasks();
    const int timeout = runDueTimers();
    {
      const std::lock_guard lock(mutex_);
      if (stopping_) return;
      if (!tasks_.empty()) continue;
    }
    // A reply that a task waited for may have brought events along: they are in the queue of xcb, where
    // poll() does not see them.
    connection_.flush();
    noticeLoss();
    if (!connectionLost_ &&
        handleBatch(XReply<xcb_generic_event_t>(xcb_poll_for_queued_event(connection_.get())))) {
      continue;
    }
    const int watched = watched_;
    std::array<pollfd, 3> descriptors{
        pollfd{wakeUp_, POLLIN, 0},
        pollfd{connectionLost_ ? -1 : xcb_get_file_descriptor(connection_.get()), POLLIN, 0},
        pollfd{watched, POLLIN, 0}};
    busy_ = false;
    poll(descriptors.data(), descriptors.size(), timeout);
    busy_ = true;
    if (descriptors[0].revents != 0) {
      eventfd_t count = 0;
      eventfd_read(wakeUp_, &count);
    }
    // Reads the socket once: if there is more, the next poll() returns at once, which costs less than a
    // second read after each key that finds nothing.
    if (descriptors[1].revents != 0) {
      handleBatch(XReply<xcb_generic_event_t>(xcb_poll_for_event(connection_.get())));
    }
    if (descriptors[2].revents != 0 && watched_ == watched) {
      const auto onReadable = onWatchedReadable_;  // it may watch another one
      onReadable();
    }
  }
}

void XEventLoop::readEvents() {
  if (connectionLost_) return;
  while (XReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) onEvent_(*event);
  if (onEventsHandled_) onEventsHandled_();
}

// Handles the event and those that wait in the queue of xcb.
bool XEventLoop::handleBatch(XReply<xcb_generic_event_t> event) {
  if (!event) return false;
  for (; event; event.reset(xcb_poll_for_queued_event(connection_.get()))) onEvent_(*event);
  if (onEventsHandled_) onEventsHandled_();
  return true;
}

void XEventLoop::noticeLoss() {
  if (connectionLost_ || !connection_.lost()) return;
  connectionLost_ = true;
  onConnectionLost_();
}

void XEventLoop::runTasks() {
  std::vector<Task> tasks;
  {
    const std::lock_guard lock(mutex_);
    tasks.swap(tasks_);
  }
  for (const auto& task : tasks) task();
}

int XEventLoop::runDueTimers() {
  while (!timers_.empty() && timers_.begin()->first.first <= Clock::now()) {
    const Task task = std::move(timers_.begin()->second);
    timers_.erase(timers_.begin());
    task();
  }
  if (timers_.empty()) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(timers_.begin()->first.first - Clock::now());
  return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

}  // namespace quorlo
