#pragma once

#include "chaos/chaos_scene.h"

#include <functional>
#include <string>
#include <vector>

namespace quorlo {

// Something that happens on a desktop while a user types.
struct Disturbance {
  // What holds for the words typed between its begin and its end. Before and after it every abbreviation
  // expands; no character is ever lost.
  enum class Meanwhile {
    everythingExpands,  // the typing goes on
    mayExpand,          // an abbreviation expands whole or stays as typed, until Quorlo works again
  };

  std::string name;
  Meanwhile meanwhile = Meanwhile::everythingExpands;
  // Whether the typing pauses until all that was typed has arrived. Where it does not, the disturbance begins
  // between two keys that are still on their way.
  bool waitsBefore = false;
  std::function<void(ChaosScene&)> begin;
  // After it, Quorlo can work again.
  std::function<void(ChaosScene&)> end = [](ChaosScene&) {};
};

// Of what the second keyboard is used for in one session: the virtual device cannot be typed on any more once
// it was disabled.
enum class SecondKeyboard { isTypedOn, isPluggedInAndOut };

std::vector<Disturbance> keyboardDisturbances(SecondKeyboard second);
std::vector<Disturbance> clipboardDisturbances();
std::vector<Disturbance> desktopDisturbances();
std::vector<Disturbance> processDisturbances();

}  // namespace quorlo
