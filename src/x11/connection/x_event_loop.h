#pragma once

#include "x11/connection/x_connection.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace quorlo {

// A thread of its own that reads the events of one connection, runs tasks handed to it and timers. It
// sleeps in poll() until one of them is due; nothing wakes it periodically.
//
// When the server goes away the handler for it is called once on the loop's thread; tasks and timers go
// on until `stop`, so that nobody who waits for a task is left hanging.
class XEventLoop {
 public:
  using Clock = std::chrono::steady_clock;
  using Task = std::function<void()>;
  using EventHandler = std::function<void(const xcb_generic_event_t& event)>;
  using TimerId = std::uint64_t;

  // `threadName` has at most 15 bytes. The connection must outlive the loop.
  XEventLoop(XConnection& connection, std::string threadName);
  ~XEventLoop();
  XEventLoop(const XEventLoop&) = delete;
  XEventLoop& operator=(const XEventLoop&) = delete;

  // Once. All are called on the loop's thread; `onEventsHandled` after each batch of events, before a waiting
  // `catchUp` returns.
  void start(EventHandler onEvent, Task onConnectionLost, Task onEventsHandled = {});
  // Ends the thread and waits for it; tasks and timers not yet run are dropped. Not from the loop's thread.
  void stop();

  // Runs the task on the loop's thread, in the order of the calls. Any thread.
  void post(Task task);
  // The same, and waits for it. False when `atMost` passed first (the task may still run later, so it
  // must own what it uses) or the loop is stopped. Not from the loop's thread.
  bool postAndWait(Task task, std::chrono::milliseconds atMost);

  // Whether all that the server had sent before the call has been handled. A system call; any thread.
  bool hasCaughtUp() const;
  // Waits until all that the server had sent before the call has been handled. Costs a system call when
  // there is nothing to wait for. False as above.
  bool catchUp(std::chrono::milliseconds atMost);

  // On the loop's thread.
  TimerId runAt(Clock::time_point due, Task task);
  void cancel(TimerId timer);
  // Calls whenever this descriptor is readable or its other end closed; -1 for none. One at a time.
  void watch(int descriptor, Task onReadable);

 private:
  void run();
  void readEvents();  // all that the server has sent
  bool handleBatch(XReply<xcb_generic_event_t> event);
  void noticeLoss();
  void runTasks();
  int runDueTimers();  // milliseconds until the next one; -1 for none

  XConnection& connection_;
  std::string threadName_;
  int wakeUp_;  // eventfd
  EventHandler onEvent_;
  Task onConnectionLost_;
  Task onEventsHandled_;
  bool connectionLost_ = false;
  // False only while the thread sleeps: set before it takes anything from the connection.
  std::atomic<bool> busy_ = true;
  int watched_ = -1;
  Task onWatchedReadable_;
  TimerId lastTimer_ = 0;
  std::map<std::pair<Clock::time_point, TimerId>, Task> timers_;

  std::mutex mutex_;
  std::vector<Task> tasks_;
  bool stopping_ = false;

  std::thread thread_;
};

}  // namespace quorlo
