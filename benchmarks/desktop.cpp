// The whole program on a virtual desktop: how long an expansion takes beyond its documented delay, and how
// often it wakes while nothing happens.
//
// quorlo_desktop_bench [--figures FILE]; the program is the one of the same build.

#include "benchmark_library.h"
#include "figures.h"
#include "process_status.h"
#include "run_benchmark.h"
#include "target_window.h"
#include "virtual_desktop/quorlo_program.h"
#include "virtual_desktop/virtual_desktop.h"
#include "virtual_desktop/wait.h"

#include <fmt/format.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace quorlo {
namespace {

using std::chrono::milliseconds;

constexpr int kExpansions = 60;
constexpr milliseconds kStartDelay{50};  // before the first piece, by design
constexpr int kIdleSeconds = 10;
constexpr int kStartUpSeconds = 12;  // the trash is looked through, and a missing tray told of, after 10 s

std::int64_t wakeUps(pid_t process) {
  std::int64_t sum = 0;
  for (const auto& task : std::filesystem::directory_iterator(fmt::format("/proc/{}/task", process))) {
    sum += statusValue(task.path() / "status", "voluntary_ctxt_switches");
    std::ifstream children(task.path() / "children");
    pid_t child = 0;
    while (children >> child) sum += wakeUps(child);
  }
  return sum;
}

double expandOverhead(VirtualDesktop& desktop) {
  auto& keyboard = desktop.keyboard();
  TargetWindow target(desktop.display(), keyboard.keycodeOf("v"));
  desktop.windows().activate(target.window());
  std::vector<double> samples;
  for (int i = 0; i < kExpansions; ++i) {
    target.ownClipboard("what the user copied");
    target.serve(milliseconds(50));
    keyboard.type("sig", milliseconds(10));
    const auto begin = TargetWindow::Clock::now();
    keyboard.tap("space");
    const auto end = target.waitForPaste();
    if (target.pasted() != "Kind regards ") throw std::runtime_error("pasted: " + target.pasted());
    samples.push_back(std::chrono::duration<double, std::milli>(end - begin - kStartDelay).count());
    target.serve(milliseconds(600));  // until the clipboard has been given back
  }
  return percentile(samples, 0.95);
}

void run(Figures& figures) {
  VirtualDesktop desktop;
  QuorloProgram quorlo(desktop, QUORLO, benchmarkLibrary(10'000));
  std::this_thread::sleep_for(std::chrono::seconds(kStartUpSeconds));

  const auto before = wakeUps(quorlo.process().pid());
  std::this_thread::sleep_for(std::chrono::seconds(kIdleSeconds));
  const auto after = wakeUps(quorlo.process().pid());
  figures.add("idle_wakeups_per_s", static_cast<double>(after - before) / kIdleSeconds);

  figures.add("expand_overhead_p95_ms", expandOverhead(desktop));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  return quorlo::runBenchmark(argc, argv, "desktop", quorlo::run);
}
