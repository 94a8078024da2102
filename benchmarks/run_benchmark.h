#pragma once

#include "figures.h"

#include <exception>
#include <iostream>

namespace quorlo {

// The main function of a benchmark on a virtual desktop, where much can fail: runs `measure` and returns the
// exit status, with a word about what was thrown.
template <class Measure>
int runBenchmark(int argc, char** argv, const char* name, Measure measure) {
  try {
    Figures figures(argc, argv);
    measure(figures);
    return 0;
  } catch (const std::exception& problem) {
    std::cerr << name << " bench: " << problem.what() << "\n";
    return 1;
  }
}

}  // namespace quorlo
