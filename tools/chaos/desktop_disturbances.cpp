// The window manager.
#include "chaos/disturbance.h"

#include <csignal>

namespace quorlo {

namespace {

// The keyboard focus is the window manager's until it has settled.
void activate(ChaosScene& scene) {
  scene.desktop().windows().activate(scene.target().window());
}

}  // namespace

std::vector<Disturbance> desktopDisturbances() {
  constexpr auto kStrict = Disturbance::Meanwhile::everythingExpands;
  return {
      {"window manager replaced", kStrict, true,
       [](ChaosScene& scene) {
         scene.desktop().windowManager().signal(SIGCONT);  // one that hangs never makes room
         scene.desktop().replaceWindowManager();
         activate(scene);
       }},
      {"window manager crashed", kStrict, true,
       [](ChaosScene& scene) {
         scene.desktop().windowManager().signal(SIGKILL);
         scene.desktop().replaceWindowManager();
         activate(scene);
       }},
      {"window manager hangs", kStrict, false,
       [](ChaosScene& scene) { scene.desktop().windowManager().signal(SIGSTOP); },
       [](ChaosScene& scene) { scene.desktop().windowManager().signal(SIGCONT); }},
  };
}

}  // namespace quorlo
