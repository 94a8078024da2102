#include "program/termination_signals.h"

#include <QSocketNotifier>

#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>
#include <csignal>

namespace quorlo {
namespace {

sigset_t terminationSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int each : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, each);
  return signals;
}

}  // namespace

void blockTerminationSignals() {
  const auto signals = terminationSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

TerminationSignals::TerminationSignals(std::function<void()> terminate) {
  const auto signals = terminationSignals();
  descriptor_ = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
  notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this, terminate = std::move(terminate)] {
    signalfd_siginfo info;
    if (read(descriptor_, &info, sizeof info) == sizeof info) terminate();
  });
}

TerminationSignals::~TerminationSignals() {
  notifier_.reset();
  close(descriptor_);
}

}  // namespace quorlo
