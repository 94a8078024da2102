// How long the fill-in window takes from the key that completes the abbreviation until it has the keyboard
// and shows its fields, beyond the documented delay.
//
// quorlo_fill_in_bench [--figures FILE]; the program is the one of the same build.

#include "figures.h"
#include "run_benchmark.h"
#include "support/opening_meter.h"
#include "target_window.h"
#include "virtual_desktop/quorlo_program.h"
#include "virtual_desktop/virtual_desktop.h"

#include <chrono>
#include <vector>

namespace quorlo {
namespace {

using std::chrono::milliseconds;

constexpr int kOpenings = 30;
constexpr double kStartDelayMs = 50;  // before a snippet is prepared, by design

constexpr const char* kLibrary =
    R"({"snippets": [{"uuid": "L", "title": "letter", "formatted": 0, "abbreviation": "letr",)"
    R"( "text": "Dear %textfield:name=Name:default=Ada:textfield%, %options:name=What:default=0:name0=tea:name1=coffee:options% on %date:dateLength=long:timeLength=none:showPicker=1:date%? %textfield:name=More:default=a\nb:textfield%"}]})";

void run(Figures& figures) {
  VirtualDesktop desktop;
  QuorloProgram quorlo(desktop, QUORLO, kLibrary);
  TargetWindow target(desktop.display(), desktop.keyboard().keycodeOf("v"));
  desktop.windows().activate(target.window());
  OpeningMeter meter(desktop, target, {10, 10, 50, 150});  // the labels at the left edge
  std::vector<double> samples;
  for (int i = 0; i < kOpenings; ++i) {
    desktop.keyboard().type("letr", milliseconds(10));
    const auto press = [&] { desktop.keyboard().tap("space"); };
    samples.push_back(meter.openOnce(press) - kStartDelayMs);
  }
  figures.add("fill_in_first_open_ms", samples.front());
  figures.add("fill_in_open_ms", percentile(samples, 0.95));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  return quorlo::runBenchmark(argc, argv, "fill-in", quorlo::run);
}
