#include "cli/interruption.h"

#include "import/work_progress.h"

#include <atomic>

namespace quorlo {
namespace {

std::atomic<WorkProgress*> interrupted = nullptr;

extern "C" void cancelInterrupted(int) {
  if (auto* const progress = interrupted.load()) progress->cancel();
}

}  // namespace

CancelledByInterrupt::CancelledByInterrupt(WorkProgress& progress) {
  interrupted = &progress;
  struct sigaction action {};
  action.sa_handler = cancelInterrupted;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  ::sigaction(SIGINT, &action, &former_);
}

CancelledByInterrupt::~CancelledByInterrupt() {
  ::sigaction(SIGINT, &former_, nullptr);
  interrupted = nullptr;
}

}  // namespace quorlo
