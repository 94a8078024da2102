// How long the program takes from its start until it watches the keyboard, over a library that is there, and
// what it weighs then.
//
// quorlo_start_bench [--figures FILE]; the program is the one of the same build.

#include "benchmark_library.h"
#include "figures.h"
#include "run_benchmark.h"
#include "support/process_status.h"
#include "virtual_desktop/quorlo_program.h"
#include "virtual_desktop/virtual_desktop.h"

#include <fmt/format.h>

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace quorlo {
namespace {

using std::chrono::steady_clock;

constexpr int kStarts = 7;
constexpr std::chrono::seconds kLongestEnd{20};
constexpr std::chrono::seconds kUntilItRests{6};  // the repairs of the start and the first save are over

void end(QuorloProgram& quorlo) {
  quorlo.process().signal(SIGTERM);
  if (quorlo.process().waitForEnd(kLongestEnd) != 0)
    throw std::runtime_error("Quorlo did not end well:\n" + quorlo.log());
}

void measure(int snippets, const std::string& size, Figures& figures) {
  VirtualDesktop desktop;
  {
    QuorloProgram first(desktop, QUORLO, benchmarkLibrary(snippets));
    end(first);
  }
  std::vector<double> samples;
  for (int i = 0; i < kStarts; ++i) {
    const auto begin = steady_clock::now();
    QuorloProgram quorlo(desktop, QUORLO);
    samples.push_back(std::chrono::duration<double, std::milli>(steady_clock::now() - begin).count());
    if (i == kStarts - 1) {
      std::this_thread::sleep_for(kUntilItRests);
      const auto status = fmt::format("/proc/{}/status", quorlo.process().pid());
      figures.add("rss_mb_" + size, static_cast<double>(statusValue(status, "VmRSS")) / 1024);
    }
    end(quorlo);
  }
  figures.add(size == "10k" ? "start_to_monitoring_ms" : "start_to_monitoring_100k_ms",
              percentile(samples, 0.5));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  return quorlo::runBenchmark(argc, argv, "start", [](quorlo::Figures& figures) {
    quorlo::measure(10'000, "10k", figures);
    quorlo::measure(100'000, "100k", figures);
  });
}
