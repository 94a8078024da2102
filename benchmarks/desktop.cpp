// The whole program on a virtual desktop: how long an expansion takes beyond its documented delay, and how
// often it wakes while nothing happens.
//
// quorlo_desktop_bench [--figures FILE]; the program is the one of the same build.

#include "benchmark_library.h"
#include "figures.h"
#include "run_benchmark.h"
#include "support/process_status.h"
#include "target_window.h"
#include "virtual_desktop/applications.h"
#include "virtual_desktop/quorlo_program.h"
#include "virtual_desktop/virtual_desktop.h"
#include "virtual_desktop/wait.h"

#include <fmt/format.h>

#include <algorithm>
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
constexpr int kExpansionsWithPicture = 5;
constexpr milliseconds kPictureIsBack{60'000};
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

// From the completing key to the text in the target, less the start delay, in milliseconds.
double overheadOfOne(VirtualKeyboard& keyboard, TargetWindow& target) {
  keyboard.type("sig", milliseconds(10));
  const auto begin = TargetWindow::Clock::now();
  keyboard.tap("space");
  const auto end = target.waitForPaste();
  if (target.pasted() != "Kind regards ") throw std::runtime_error("pasted: " + target.pasted());
  return std::chrono::duration<double, std::milli>(end - begin - kStartDelay).count();
}

double expandOverhead(VirtualDesktop& desktop, TargetWindow& target) {
  std::vector<double> samples;
  for (int i = 0; i < kExpansions; ++i) {
    target.ownClipboard("what the user copied");
    target.serve(milliseconds(50));
    samples.push_back(overheadOfOne(desktop.keyboard(), target));
    target.serve(milliseconds(600));  // until the clipboard has been given back
  }
  return percentile(samples, 0.95);
}

// While a program offers a picture that it encodes anew each time it is asked.
double expandOverheadWithPicture(VirtualDesktop& desktop, TargetWindow& target) {
  double longest = 0;
  for (int i = 0; i < kExpansionsWithPicture; ++i) {
    const ClipboardHolder holder(desktop, CLIPBOARD_HOLDER, {"photo:3840x2160"});
    longest = std::max(longest, overheadOfOne(desktop.keyboard(), target));
    const auto isBack = [&] {
      target.serve(milliseconds(100));
      return ClipboardHolder::show(desktop, CLIPBOARD_HOLDER).ends_with(holder.offers());
    };
    if (!waitUntil(isBack, kPictureIsBack)) throw std::runtime_error("The picture is not given back.");
  }
  return longest;
}

void run(Figures& figures) {
  VirtualDesktop desktop;
  QuorloProgram quorlo(desktop, QUORLO, benchmarkLibrary(10'000));
  std::this_thread::sleep_for(std::chrono::seconds(kStartUpSeconds));

  const auto before = wakeUps(quorlo.process().pid());
  std::this_thread::sleep_for(std::chrono::seconds(kIdleSeconds));
  const auto after = wakeUps(quorlo.process().pid());
  figures.add("idle_wakeups_per_s", static_cast<double>(after - before) / kIdleSeconds);

  TargetWindow target(desktop.display(), desktop.keyboard().keycodeOf("v"));
  desktop.windows().activate(target.window());
  figures.add("expand_overhead_p95_ms", expandOverhead(desktop, target));
  figures.add("expand_overhead_4k_picture_ms", expandOverheadWithPicture(desktop, target));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  return quorlo::runBenchmark(argc, argv, "desktop", quorlo::run);
}
