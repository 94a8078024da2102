#pragma once

#include <chrono>

namespace quorlo {

// A moment of the wall clock.
using Date = std::chrono::system_clock::time_point;

}  // namespace quorlo
