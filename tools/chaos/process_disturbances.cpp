// Quorlo's own processes.
#include "chaos/disturbance.h"
#include "virtual_desktop/wait.h"

#include <chrono>
#include <csignal>

namespace quorlo {

namespace {

using Meanwhile = Disturbance::Meanwhile;
using Promise = TypedWord::Promise;

constexpr std::chrono::milliseconds kFastTypist{30};

void signalGuard(ChaosScene& scene, int number) {
  if (const auto guard = scene.guard(); guard != 0) kill(guard, number);
}

// Types on, as fast as a person can, until the condition holds or the time is over.
template <class Condition>
void typeUntil(ChaosScene& scene, Condition condition, std::chrono::milliseconds time = kPatience) {
  scene.typist().setGap(kFastTypist);
  const auto end = Typist::Clock::now() + time;
  while (!condition() && Typist::Clock::now() < end) scene.typist().typeWords(1, Promise::mayExpand);
}

void typeFor(ChaosScene& scene, std::chrono::milliseconds time) {
  typeUntil(
      scene, [] { return false; }, time);
}

// A word that is on its way when Quorlo stops.
void typeAndSignal(ChaosScene& scene, int number) {
  scene.typist().typePlainWord();
  scene.signalQuorlo(number);
}

// The clipboard that Quorlo had given back ends with it: X keeps no contents without an owner.
void startWhileTyping(ChaosScene& scene) {
  scene.ownClipboard("copied after the end");
  scene.startQuorlo();
  typeUntil(scene, [&] { return scene.quorloWatches(); });
}

}  // namespace

std::vector<Disturbance> processDisturbances() {
  return {
      {"guard killed", Meanwhile::everythingExpands, false,
       [](ChaosScene& scene) { signalGuard(scene, SIGKILL); }},
      {"guard stopped", Meanwhile::everythingExpands, false,
       [](ChaosScene& scene) { signalGuard(scene, SIGSTOP); },
       [](ChaosScene& scene) { signalGuard(scene, SIGCONT); }},
      {"Quorlo stopped for a moment", Meanwhile::mayExpand, true,
       [](ChaosScene& scene) {
         typeAndSignal(scene, SIGSTOP);
         typeFor(scene, std::chrono::milliseconds(scene.below(300)));
         scene.signalQuorlo(SIGCONT);
       }},
      {"Quorlo stopped", Meanwhile::mayExpand, true,
       [](ChaosScene& scene) {
         typeAndSignal(scene, SIGSTOP);
         typeFor(scene, std::chrono::milliseconds(600 + scene.below(900)));
       },
       [](ChaosScene& scene) { scene.signalQuorlo(SIGCONT); }},
      {"Quorlo killed", Meanwhile::mayExpand, true,
       [](ChaosScene& scene) {
         scene.typist().typePlainWord();
         scene.endQuorlo(SIGKILL);
         scene.typist().typeWords(5, Promise::staysAsTyped);
       },
       startWhileTyping},
      {"Quorlo quit", Meanwhile::mayExpand, true,
       [](ChaosScene& scene) {
         scene.typist().typeWords(2, Promise::mayExpand);
         scene.endQuorlo(SIGTERM);
         scene.typist().typeWords(5, Promise::staysAsTyped);
       },
       startWhileTyping},
  };
}

}  // namespace quorlo
