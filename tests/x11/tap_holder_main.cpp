// A program with a tap that passes every key, to be stopped and killed by tests.
//
// Usage: tap-holder DISPLAY GUARD
#include "x11/keyboard/keyboard_service.h"
#include "x11/pumped_queue.h"

#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  quorlo::PumpedQueue queue;
  auto service = quorlo::KeyboardService::start({argv[1], argv[2], nullptr}, queue);
  if (!service) return 1;
  const auto port = service.value()->createTap(
      [](quorlo::TapEventType, const quorlo::KeyDownEvent*, void*) { return quorlo::TapVerdict::pass; },
      nullptr);
  std::puts(port ? "tapping" : "no tap");
  std::fflush(stdout);
  for (;;) queue.pumpUntil([] { return false; }, std::chrono::hours(1));
}
