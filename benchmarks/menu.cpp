// How long the snippet menu takes from its hot key until it has the keyboard and shows its rows, beyond the
// documented delay, with a library of 10,000 snippets.
//
// quorlo_menu_bench [--figures FILE]; the program is the one of the same build.

#include "figures.h"
#include "run_benchmark.h"
#include "support/opening_meter.h"
#include "target_window.h"
#include "virtual_desktop/quorlo_program.h"
#include "virtual_desktop/virtual_desktop.h"

#include <fmt/format.h>

#include <string>
#include <vector>

namespace quorlo {
namespace {

constexpr int kSnippets = 10'000;
constexpr int kOpenings = 30;
constexpr double kStartDelayMs = 50;  // between the hot key and the menu, by design

std::string library() {
  std::string text = R"({"snippets": [)";
  for (int i = 0; i < kSnippets; ++i) {
    text += fmt::format(
        R"({1}{{"uuid": "U{0}", "title": "Snippet {0}", "text": "The text of snippet {0}, a line of the usual length, with some more words", "formatted": 0, "abbreviation": "Q{0}"}})",
        i, i == 0 ? "" : ", ");
  }
  return text + "]}";
}

void run(Figures& figures) {
  VirtualDesktop desktop;
  const QuorloProgram quorlo(
      desktop, QUORLO, library(),
      {{"SnippetMenuViewShortcut", R"("{\"keyCode\":49,\"modifierFlags\":1572864}")"}});
  TargetWindow target(desktop.display(), desktop.keyboard().keycodeOf("v"));
  desktop.windows().activate(target.window());
  desktop.pointer().moveTo(900, 20);
  OpeningMeter meter(desktop, target, {10, 45, 150, 300});  // below the search field with its caret
  std::vector<double> samples;
  for (int i = 0; i < kOpenings; ++i) {
    desktop.keyboard().press("Ctrl");
    desktop.keyboard().press("Alt");
    samples.push_back(meter.openOnce([&] {
      desktop.keyboard().tap("space");
      desktop.keyboard().releaseAll();
    }) - kStartDelayMs);
  }
  figures.add("menu_first_open_ms", samples.front());
  figures.add("menu_open_ms", percentile(samples, 0.95));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  return quorlo::runBenchmark(argc, argv, "menu", quorlo::run);
}
