#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace quorlo {

// Leaves SIGINT, SIGTERM and SIGHUP to TerminationSignals. To be called before any thread is started, so that
// all of them inherit it.
void blockTerminationSignals();

// Calls `terminate` on the main thread when the process is asked to end. Needs a QCoreApplication.
class TerminationSignals {
 public:
  explicit TerminationSignals(std::function<void()> terminate);
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;
  ~TerminationSignals();

 private:
  int descriptor_ = -1;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace quorlo
