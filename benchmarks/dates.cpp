// What one date macro costs: the mean over a standard date and time, an offset of three weeks in a long
// style, and a custom date with a custom time, once for each of two languages.

#include "fakes/fake_environment.h"
#include "figures.h"
#include "macros/dates/date_and_time_formatter.h"
#include "macros/dates/date_macro.h"

#include <chrono>
#include <iterator>
#include <string>
#include <vector>

namespace quorlo {
namespace {

constexpr int kRounds = 2'000;
constexpr std::u16string_view kMacros[] = {
    u"%date:dateLength=short:timeLength=short:math=0:mathType=days:showPicker=0:date%",
    u"%date:dateLength=long:timeLength=none:math=21:mathType=days:showPicker=0:date%",
    u"%date:dateLength=custom:dateFormat=%EEEE, %d. %MMMM :timeLength=custom:timeFormat=%HH%1111%mm:date%"};

double meanMicroseconds(DateAndTimeFormatter& formatter, Moment now) {
  const auto begin = std::chrono::steady_clock::now();
  for (const auto macro : kMacros) renderDateMacro(macro, now, DateOffset::apply, formatter);
  const std::chrono::duration<double, std::micro> duration = std::chrono::steady_clock::now() - begin;
  return duration.count() / std::size(kMacros);
}

void run(Figures& figures) {
  FakeEnvironment environment;
  DateAndTimeFormatter formatter(environment);
  std::vector<double> samples;
  for (int round = 0; round < kRounds; ++round) {
    environment.languages = {round % 2 == 0 ? "en_US" : "de_DE"};
    formatter.readEnvironment();
    samples.push_back(meanMicroseconds(formatter, momentOf(environment.now()) + std::chrono::hours(round)));
  }
  figures.add("date_render_us", percentile(samples, 0.5));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  quorlo::Figures figures(argc, argv);
  quorlo::run(figures);
}
