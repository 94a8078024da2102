// Maps, rates, locks and the keyboards themselves.
#include "chaos/disturbance.h"
#include "chaos/sticky_keys.h"

#include "virtual_desktop/wait.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace quorlo {

namespace {

using Promise = TypedWord::Promise;

const std::vector<std::string> kAlikeLayouts{"us", "de", "es", "gb", "se", "it"};
const std::vector<std::string> kOtherLayouts{"us", "de", "fr", "us(dvorak)", "us(intl)", "es"};
const std::vector<std::string> kSymbols{"keycode 66 = Escape",           "keycode 255 = eacute Eacute",
                                        "keycode 49 = asciitilde grave", "keysym Menu = Multi_key",
                                        "keycode 135 = Multi_key",       "remove Lock = Caps_Lock"};

void join(ChaosScene& scene) {
  scene.joinPrograms();
}

void setLayout(ChaosScene& scene, const std::string& layout) {
  scene.desktop().setLayout(layout);
  scene.layout = layout;
}

bool isAlike(const ChaosScene& scene) {
  return std::ranges::count(kAlikeLayouts, scene.layout) > 0;
}

// The words typed have their letters on the same keys in both layouts.
void changeLayoutBeside(ChaosScene& scene) {
  if (!isAlike(scene)) {
    scene.typist().waitForArrival();
    setLayout(scene, "us");
    scene.typist().typePlainWord();
    scene.typist().waitForArrival();
  }
  scene.layout = scene.oneOf(kAlikeLayouts);
  scene.runBeside({"setxkbmap", "-layout", scene.layout});
}

// The first word shows Quorlo the new map; which map it was read by is not known before.
void changeLayout(ChaosScene& scene) {
  setLayout(scene, scene.oneOf(kOtherLayouts));
  scene.typist().typePlainWord();
  scene.typist().waitForArrival();
}

void forgetLayout(ChaosScene& scene) {
  scene.joinPrograms();
  scene.desktop().forgetLayout();
}

void changeSymbols(ChaosScene& scene) {
  scene.runBeside({"xmodmap", "-e", scene.oneOf(kSymbols)});
}

void typeForeignCharacters(ChaosScene& scene) {
  scene.run({"xdotool", "type", scene.oneOf(std::vector<std::string>{"é€", "ß", "日本", "→✓"})});
}

void changeRate(ChaosScene& scene) {
  scene.runBeside(
      {"xset", "r", "rate", std::to_string(150 + scene.below(600)), std::to_string(10 + scene.below(60))});
}

// What the repeats erased is neither in the text nor in the memory of Quorlo: the rest of an abbreviation
// does not make one.
void eraseByHeldKey(ChaosScene& scene) {
  auto& typist = scene.typist();
  typist.closeAccount();
  const auto erased = "ws" + std::string(static_cast<std::size_t>(scene.below(6)), 'i');
  typist.press(erased);
  waitUntil([&] { return scene.target().text() == erased; });
  auto& keyboard = scene.desktop().keyboard();
  keyboard.press("BackSpace");
  waitUntil([&] { return scene.target().text().empty(); });
  keyboard.release("BackSpace");
  typist.type({"ig ", "Kind regards, Ada Lovelace ", Promise::staysAsTyped});
}

void toggleNumLock(ChaosScene& scene) {
  scene.runBeside({"xdotool", "key", "Num_Lock"});
}

// Where Sticky Keys end the server unlocks everything, so they and Caps Lock do not come together.
void useStickyKeys(ChaosScene& scene) {
  if (scene.typist().capsLocked()) return;
  setStickyKeys(scene.desktop().display(), true);
  scene.stickyKeys = true;
}

void dropStickyKeys(ChaosScene& scene) {
  if (!std::exchange(scene.stickyKeys, false)) return;
  setStickyKeys(scene.desktop().display(), false);
}

void lockCaps(ChaosScene& scene) {
  if (scene.stickyKeys) return;
  scene.run({"xdotool", "key", "Caps_Lock"});
  scene.typist().setCapsLocked(true);
}

void unlockCaps(ChaosScene& scene) {
  if (!scene.typist().capsLocked()) return;
  scene.typist().waitForArrival();
  scene.run({"xdotool", "key", "Caps_Lock"});
  scene.typist().setCapsLocked(false);
  scene.typist().typePlainWord();
  scene.typist().waitForArrival();
}

}  // namespace

std::vector<Disturbance> keyboardDisturbances(SecondKeyboard second) {
  constexpr auto kStrict = Disturbance::Meanwhile::everythingExpands;
  std::vector<Disturbance> all{
      {"another layout while typing", kStrict, false, changeLayoutBeside, forgetLayout},
      {"another layout", kStrict, true, changeLayout},
      {"xmodmap", kStrict, false, changeSymbols, join},
      {"characters that the layout lacks", kStrict, true, typeForeignCharacters},
      {"repeat rate", kStrict, false, changeRate, join},
      {"held BackSpace", kStrict, true, eraseByHeldKey},
      {"Num Lock", kStrict, false, toggleNumLock, join},
      {"Sticky Keys", kStrict, false, useStickyKeys, dropStickyKeys},
      {"Caps Lock", kStrict, true, lockCaps, unlockCaps},
  };
  const auto xinput = [](std::string verb) {
    return [verb](ChaosScene& scene) { scene.runBeside({"xinput", verb, "keyboard2"}); };
  };
  const auto reattach = [](ChaosScene& scene) {
    scene.joinPrograms();
    scene.run({"xinput", "reattach", "keyboard2", "Virtual core keyboard"});
  };
  if (second == SecondKeyboard::isPluggedInAndOut) {
    all.push_back({"a keyboard pulled out", kStrict, false, xinput("disable"), [](ChaosScene& scene) {
                     scene.joinPrograms();
                     scene.run({"xinput", "enable", "keyboard2"});
                   }});
    all.push_back({"a keyboard floats", kStrict, false, xinput("float"), reattach});
  } else {
    // The server reads two keyboards in no order, so the typist changes hands when all keys have arrived.
    all.push_back({"the other keyboard", kStrict, true,
                   [](ChaosScene& scene) { scene.typist().useSecondKeyboard(true); },
                   [](ChaosScene& scene) {
                     scene.typist().waitForArrival();
                     scene.typist().useSecondKeyboard(false);
                   }});
  }
  return all;
}

}  // namespace quorlo
