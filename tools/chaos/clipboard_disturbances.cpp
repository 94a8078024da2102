// Owners of the clipboard.
#include "chaos/disturbance.h"

#include <csignal>
#include <string>

namespace quorlo {

namespace {

std::string newText(ChaosScene& scene) {
  return "copied " + std::to_string(scene.below(1'000'000));
}

// Not between a paste chord and the target's read: the target would read the copy.
void copy(ChaosScene& scene) {
  scene.typist().waitForArrival();
  scene.ownClipboard(newText(scene));
}

}  // namespace

std::vector<Disturbance> clipboardDisturbances() {
  constexpr auto kStrict = Disturbance::Meanwhile::everythingExpands;
  return {
      {"a copy", kStrict, false, copy},
      {"a huge copy", kStrict, true,
       [](ChaosScene& scene) { scene.ownClipboard(newText(scene) + std::string(5'000'000, 'h')); }},
      // It answers when the piece of an expansion has taken its place.
      {"a slow owner", kStrict, true,
       [](ChaosScene& scene) {
         auto& owner = scene.ownClipboard(newText(scene));
         owner.signal(SIGSTOP);
         scene.typist().typeAbbreviation(TypedWord::Promise::expands);
         scene.typist().waitForArrival();
         owner.signal(SIGCONT);
       }},
      // Asked for its contents, it answers when the words have been typed.
      {"a hanging owner", kStrict, true,
       [](ChaosScene& scene) {
         auto& owner = scene.ownClipboard(newText(scene));
         scene.typist().waitForArrival();
         owner.signal(SIGSTOP);
         scene.loseClipboard();
       },
       copy},
      {"a dying owner", kStrict, true,
       [](ChaosScene& scene) {
         scene.ownClipboard(newText(scene) + std::string(5'000'000, 'd'));
         scene.loseClipboard();
         scene.typist().typeAbbreviation(TypedWord::Promise::expands);
         scene.dropClipboardOwner();
       },
       copy},
  };
}

}  // namespace quorlo
