#pragma once

#include "chaos/account.h"
#include "chaos/chaos_target.h"

#include <chrono>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {

class VirtualDesktop;

// Types words of known text and keeps account of them. The words of the seed are always the same.
class Typist {
 public:
  using Clock = ChaosTarget::Clock;
  using Promise = TypedWord::Promise;

  // Abbreviations and their texts. No other word has the letter with which they begin.
  static const std::vector<std::pair<std::string, std::string>>& abbreviations();

  Typist(VirtualDesktop& desktop, ChaosTarget& target, std::mt19937& random)
      : desktop_(desktop), target_(target), random_(random) {}

  // The pause between two keys, and which keyboard is typed on.
  void setGap(std::chrono::milliseconds gap) { gap_ = gap; }
  void useSecondKeyboard(bool second) { second_ = second; }
  // Letters arrive in the other case and nothing expands.
  void setCapsLocked(bool locked) { capsLocked_ = locked; }
  bool capsLocked() const { return capsLocked_; }

  // A word that is no abbreviation.
  void typePlainWord();
  // One of three is an abbreviation, of which this is promised.
  void typeWords(int count, Promise promise);
  void typeAbbreviation(Promise promise);
  void type(const TypedWord& word);

  // Ends the line and waits until its end has arrived; false when it has not within the patience.
  bool waitForArrival();
  // What arrived of the last line that has ended.
  std::string lastLine() const;

  // Keys of which nothing will be left in the text.
  void press(const std::string& keys);

  // Compares what was typed with what has arrived, and begins anew with an empty target.
  void closeAccount();
  // The closed accounts since the last call.
  struct Result {
    Faults faults;
    std::chrono::milliseconds longestDeadTime{};  // from a key press to the next sign of life in the target
    std::string report;                           // expected and actual texts, where they differ
  };
  Result takeResult() { return std::exchange(result_, {}); }

 private:
  int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(random_); }
  std::chrono::milliseconds longestDeadTime() const;

  VirtualDesktop& desktop_;
  ChaosTarget& target_;
  std::mt19937& random_;
  std::chrono::milliseconds gap_{5};
  bool second_ = false;
  bool capsLocked_ = false;
  std::vector<TypedWord> typed_;
  std::vector<Clock::time_point> pressed_;
  Result result_;
};

}  // namespace quorlo
