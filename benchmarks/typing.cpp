// What a key costs while a person types, and how long the keyboard is dead when Quorlo is stopped.
//
// quorlo_typing_bench [--figures FILE]; the program is the one of the same build.

#include "benchmark_library.h"
#include "figures.h"
#include "run_benchmark.h"
#include "support/key_relay.h"
#include "target_window.h"
#include "virtual_desktop/quorlo_program.h"
#include "virtual_desktop/virtual_desktop.h"

#include <fmt/format.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>

namespace quorlo {
namespace {

using std::chrono::milliseconds;

// A fast typist's burst: a word of eight letters and its space, then a breath.
constexpr int kWords = 100;
constexpr std::string_view kWord = "chestnut ";
constexpr milliseconds kDown{30};
constexpr milliseconds kUp{30};
constexpr milliseconds kBreath{150};

constexpr int kStops = 10;
constexpr milliseconds kGap{37};
constexpr int kKeysWhileStopped = 40;

struct Work {
  double microseconds = 0;  // on a processor
  double wakeUps = 0;
};

double wakeUps(const std::filesystem::path& task) {
  std::ifstream status(task / "status");
  std::string word;
  double count = 0;
  while (status >> word && word != "voluntary_ctxt_switches:") continue;
  status >> count;
  return count;
}

// By the name of the thread; of the program and of its children.
void addWork(pid_t process, std::map<std::string, Work>& work) {
  for (const auto& task : std::filesystem::directory_iterator(fmt::format("/proc/{}/task", process))) {
    std::string name;
    std::getline(std::ifstream(task.path() / "comm"), name);
    double nanoseconds = 0;
    std::ifstream(task.path() / "schedstat") >> nanoseconds;
    work[name].microseconds += nanoseconds / 1000;
    work[name].wakeUps += wakeUps(task.path());
    std::ifstream children(task.path() / "children");
    pid_t child = 0;
    while (children >> child) addWork(child, work);
  }
}

void typeWord(VirtualKeyboard& keyboard, TargetWindow& target) {
  for (const auto letter : kWord) {
    const auto key = keyboard.keycodeOf(letter == ' ' ? "space" : std::string(1, letter));
    keyboard.press(key);
    target.serve(kDown);
    keyboard.release(key);
    target.serve(kUp);
  }
  target.serve(kBreath);
}

constexpr double kKeys = kWords * static_cast<double>(kWord.size());

Work workPerKey(QuorloProgram& quorlo, VirtualKeyboard& keyboard, TargetWindow& target) {
  for (int i = 0; i < 10; ++i) typeWord(keyboard, target);
  std::map<std::string, Work> before, after;
  addWork(quorlo.process().pid(), before);
  for (int i = 0; i < kWords; ++i) typeWord(keyboard, target);
  addWork(quorlo.process().pid(), after);
  Work sum;
  for (const auto& [thread, work] : after) {
    const auto microseconds = (work.microseconds - before[thread].microseconds) / kKeys;
    const auto wakeUps = (work.wakeUps - before[thread].wakeUps) / kKeys;
    if (microseconds >= 0.05) {
      fmt::print("  {:<24} {:9.2f} us and {:5.2f} wake-ups per key\n", thread, microseconds, wakeUps);
    }
    sum.microseconds += microseconds;
    sum.wakeUps += wakeUps;
  }
  return sum;
}

double floorPerKey(VirtualDesktop& desktop, TargetWindow& target) {
  KeyRelay relay(desktop.display());
  for (int i = 0; i < 10; ++i) typeWord(desktop.keyboard(), target);
  const auto before = relay.processorTime();
  for (int i = 0; i < kWords; ++i) typeWord(desktop.keyboard(), target);
  return (relay.processorTime() - before) / kKeys;
}

// Quorlo is stopped at another point between two keys each time.
double longestDeadKeyboard(VirtualDesktop& desktop, TargetWindow& target) {
  auto& keyboard = desktop.keyboard();
  const auto key = keyboard.keycodeOf("x");
  const auto type = [&](int keys) {
    for (int i = 0; i < keys; ++i) {
      keyboard.tap(key);
      target.serve(kGap);
    }
  };
  TargetWindow::Clock::duration longest{};
  for (int i = 1; i <= kStops; ++i) {
    QuorloProgram quorlo(desktop, QUORLO);
    type(10);
    target.serve(milliseconds(3 * i));
    target.takeLongestGap();
    quorlo.process().signal(SIGSTOP);
    type(kKeysWhileStopped);
    longest = std::max(longest, target.takeLongestGap());
    quorlo.process().signal(SIGCONT);
  }
  return std::chrono::duration<double, std::milli>(longest).count();
}

void run(Figures& figures) {
  VirtualDesktop desktop;
  std::optional<QuorloProgram> quorlo;
  quorlo.emplace(desktop, QUORLO, benchmarkLibrary(10'000));
  auto& keyboard = desktop.keyboard();
  TargetWindow target(desktop.display(), keyboard.keycodeOf("v"));
  desktop.windows().activate(target.window());
  const auto work = workPerKey(*quorlo, keyboard, target);
  figures.add("cpu_us_per_key", work.microseconds);
  figures.add("wakeups_per_key", work.wakeUps);
  quorlo->process().stop();
  quorlo.reset();
  figures.add("cpu_floor_us_per_key", floorPerKey(desktop, target));
  figures.add("dead_keyboard_longest_ms", longestDeadKeyboard(desktop, target));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  return quorlo::runBenchmark(argc, argv, "typing", quorlo::run);
}
