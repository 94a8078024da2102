#include "chaos/chaos_run.h"

#include "chaos/chaos_scene.h"
#include "chaos/disturbance.h"

#include <algorithm>
#include <iterator>
#include <random>
#include <stdexcept>
#include <vector>

namespace quorlo {

namespace {

using Clock = std::chrono::steady_clock;
using Promise = TypedWord::Promise;

constexpr std::chrono::seconds kSessionTime{30};  // on one desktop
const std::vector<int> kGaps{0, 2, 10, 30};       // milliseconds between two keys

std::vector<Disturbance> disturbancesOf(SecondKeyboard second, const std::string& only) {
  std::vector<Disturbance> all;
  for (auto& some : {keyboardDisturbances(second), clipboardDisturbances(), desktopDisturbances(),
                     processDisturbances()}) {
    std::ranges::copy_if(some, std::back_inserter(all),
                         [&](const auto& each) { return each.name.find(only) != std::string::npos; });
  }
  return all;
}

// One desktop and what happens on it.
class Session {
 public:
  Session(const ChaosOptions& options, std::mt19937& random, std::ostream& log)
      : scene_(options.program, random),
        choices_(disturbancesOf(
            scene_.below(2) == 0 ? SecondKeyboard::isTypedOn : SecondKeyboard::isPluggedInAndOut,
            options.only)),
        log_(log) {}

  bool hasChoices() const { return !choices_.empty(); }

  // Words, a disturbance or several at once, words.
  void round(ChaosOutcome& outcome) {
    auto& typist = scene_.typist();
    typist.setGap(std::chrono::milliseconds(scene_.oneOf(kGaps)));
    typist.typeWords(3, Promise::expands);
    const auto chosen = choose();
    log_ << "round " << ++outcome.rounds << ": ";
    for (const auto* each : chosen) log_ << (each == chosen.front() ? "" : " + ") << each->name;
    log_ << std::flush;
    bool isStrict = true;
    for (const auto* each : chosen) {
      isStrict = isStrict && each->meanwhile == Disturbance::Meanwhile::everythingExpands;
      if (each->waitsBefore) typist.waitForArrival();
      each->begin(scene_);
      typist.typeWords(4, isStrict ? Promise::expands : Promise::mayExpand);
    }
    for (auto each = chosen.rbegin(); each != chosen.rend(); ++each) (*each)->end(scene_);
    const bool hasSettled = isStrict || scene_.settle();
    typist.typeWords(4, Promise::expands);
    typist.waitForArrival();
    typist.closeAccount();
    outcome.disturbances += static_cast<int>(chosen.size());
    account(hasSettled, outcome);
  }

 private:
  using Chosen = std::vector<const Disturbance*>;

  // At most one of those that end the rules for the words typed meanwhile.
  Chosen choose() {
    Chosen chosen{&scene_.oneOf(choices_)};
    for (int more = scene_.below(3); more > 0; --more) {
      const auto* const next = &scene_.oneOf(choices_);
      if (std::ranges::count(chosen, next) == 0 &&
          next->meanwhile == Disturbance::Meanwhile::everythingExpands) {
        chosen.insert(chosen.begin(), next);
      }
    }
    return chosen;
  }

  void account(bool hasSettled, ChaosOutcome& outcome) {
    auto result = scene_.typist().takeResult();
    if (!hasSettled) {
      result.faults.wrong += 1;
      result.report += "Quorlo does not expand any more.\n";
    }
    if (!scene_.clipboardIsKept()) {
      result.faults.wrong += 1;
      result.report += "The clipboard does not hold what was copied last.\n";
    }
    outcome.faults += result.faults;
    outcome.longestDeadTime = std::max(outcome.longestDeadTime, result.longestDeadTime);
    log_ << "; dead for " << result.longestDeadTime.count() << " ms";
    if (result.faults.sum() > 0) {
      log_ << "; lost " << result.faults.lost << ", wrong " << result.faults.wrong << "\n" << result.report;
      log_ << "Quorlo wrote:\n" << scene_.log();
    }
    log_ << std::endl;
  }

  ChaosScene scene_;
  std::vector<Disturbance> choices_;
  std::ostream& log_;
};

}  // namespace

ChaosOutcome runChaos(const ChaosOptions& options, std::ostream& log) {
  ChaosOutcome outcome;
  std::mt19937 random(options.seed);
  const auto end = Clock::now() + options.time;
  while (Clock::now() < end) {
    Session session(options, random, log);
    if (!session.hasChoices()) throw std::runtime_error("No disturbance is called " + options.only);
    const auto endOfSession = std::min(end, Clock::now() + kSessionTime);
    while (Clock::now() < endOfSession) session.round(outcome);
  }
  return outcome;
}

}  // namespace quorlo
