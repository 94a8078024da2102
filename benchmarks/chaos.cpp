// What a minute of typing loses while everything else on the desktop changes, hangs and dies.
//
// quorlo_chaos_bench [--figures FILE]; the program is the one of the same build.
#include "chaos/chaos_run.h"
#include "figures.h"
#include "run_benchmark.h"

#include <iostream>

namespace quorlo {
namespace {

void run(Figures& figures) {
  const auto outcome = runChaos({.program = QUORLO, .only = {}}, std::cerr);
  figures.add("chaos_lost", outcome.faults.lost);
  figures.add("chaos_wrong", outcome.faults.wrong);
  figures.add("chaos_dead_longest_ms", static_cast<double>(outcome.longestDeadTime.count()));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  return quorlo::runBenchmark(argc, argv, "chaos", quorlo::run);
}
