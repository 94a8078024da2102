#include "x11/guard/guard_keeper.h"

#include "base/log.h"

#include <utility>

namespace quorlo {

namespace {

constexpr std::chrono::milliseconds kLongestStart{1000};

}  // namespace

GuardKeeper::GuardKeeper(XConnection& connection, XEventLoop& loop, std::filesystem::path program,
                         xcb_window_t guarded, xcb_atom_t messageType,
                         std::function<void(xcb_window_t)> guardChanged)
    : connection_(connection),
      loop_(loop),
      program_(std::move(program)),
      guarded_(guarded),
      messageType_(messageType),
      guardChanged_(std::move(guardChanged)) {}

void GuardKeeper::begin() {
  isReplacement_ = false;
  start();
  // No key may be grabbed before the guard sees keys.
  if (guard_ && guard_->waitUntilReadable(kLongestStart)) return read();
  logWarning(
      "The keyboard guard " + program_.string() +
      " does not work. Expansion works without it, but should Quorlo ever hang, the keyboard would hang "
      "with it.");
}

void GuardKeeper::end() {
  if (nextStart_) loop_.cancel(*nextStart_);
  nextStart_.reset();
  loop_.watch(-1, nullptr);
  guardChanged_(XCB_WINDOW_NONE);
  guard_.reset();
}

void GuardKeeper::start() {
  guard_ = GuardProcess::start(program_, connection_.displayName(), guarded_, messageType_);
  if (guard_) loop_.watch(guard_->descriptor(), [this] { read(); });
}

void GuardKeeper::read() {
  const auto window = guard_->readWindow();
  guardChanged_(window);
  if (window == XCB_WINDOW_NONE) return replace();
  if (isReplacement_) logInfo("The keyboards are guarded again.");
}

void GuardKeeper::replace() {
  loop_.watch(-1, nullptr);
  guard_.reset();
  if (connection_.lost()) return;  // by the guard's own work
  const auto now = XEventLoop::Clock::now();
  const auto pause = pauses_.next(now);
  logWarning("The keyboard guard has ended; another one is started.");
  nextStart_ = loop_.runAt(now + pause, [this] {
    nextStart_.reset();
    isReplacement_ = true;
    start();
  });
}

}  // namespace quorlo
