// A program with a tap that passes every key, to be stopped and killed by tests. "!" begins a hold without
// end.
//
// Usage: tap-holder DISPLAY GUARD
#include "x11/keyboard/keyboard_service.h"
#include "x11/pumped_queue.h"

#include <cstdio>

namespace {

void say(const char* text) {
  std::puts(text);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  quorlo::PumpedQueue queue;
  auto service = quorlo::KeyboardService::start({argv[1], argv[2], nullptr}, queue);
  if (!service) return 1;
  const auto port = service.value()->createTap(
      [](quorlo::TapEventType, const quorlo::KeyDownEvent* event, void* userInfo) {
        if (event == nullptr || event->characters != u"!") return quorlo::TapVerdict::pass;
        auto& keyboard = *static_cast<quorlo::KeyboardService*>(userInfo);
        keyboard.beginHold();
        keyboard.noteProgress(std::chrono::hours(1));
        say("holding");
        return quorlo::TapVerdict::swallow;
      },
      service.value().get());
  say(port ? "tapping" : "no tap");
  for (;;) queue.pumpUntil([] { return false; }, std::chrono::hours(1));
}
