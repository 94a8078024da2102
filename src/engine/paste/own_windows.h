#pragma once

#include "base/life_token.h"

#include <cstdint>

namespace quorlo {

class MainQueue;
class OwnApplication;

// Takes this program's windows out of the way of an insertion and brings them back afterwards. Main thread.
class OwnWindows {
 public:
  // The references must outlive the object.
  OwnWindows(OwnApplication& application, MainQueue& queue) : application_(application), queue_(queue) {}

  void hide();
  // A little later, unless they are hidden again before.
  void showLater();

 private:
  OwnApplication& application_;
  MainQueue& queue_;
  bool hadRegularActivationPolicy = false;
  bool unhideIsPending_ = false;
  std::uint64_t unhideGeneration_ = 0;  // an older scheduled unhiding does nothing
  LifeToken life_;
};

}  // namespace quorlo
