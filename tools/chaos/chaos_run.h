#pragma once

#include "chaos/account.h"

#include <chrono>
#include <cstdint>
#include <ostream>
#include <string>

namespace quorlo {

struct ChaosOptions {
  std::string program;  // Quorlo
  std::uint32_t seed = 1;
  std::chrono::seconds time{60};
  std::string only;  // a part of the names of the disturbances to choose from; empty for all
};

struct ChaosOutcome {
  int rounds = 0;
  int disturbances = 0;
  Faults faults;
  std::chrono::milliseconds longestDeadTime{};
};

// Types on virtual desktops for the time given, disturbs, and accounts for every character and expansion. The
// same seed disturbs in the same order. Rounds with faults are written to the log: disturbances, expected and
// actual text. Throws std::runtime_error when the desktop itself fails.
ChaosOutcome runChaos(const ChaosOptions& options, std::ostream& log);

}  // namespace quorlo
