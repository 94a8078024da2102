#include "chaos/typist.h"

#include "virtual_desktop/virtual_desktop.h"
#include "virtual_desktop/wait.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace quorlo {

namespace {

// On the same keys in all layouts that may change while they are typed.
constexpr std::string_view kLetters = "abcdefghijklnopqrstuv";

std::string withOtherCase(std::string text) {
  for (auto& each : text) {
    const auto character = static_cast<unsigned char>(each);
    each =
        static_cast<char>(std::isupper(character) != 0 ? std::tolower(character) : std::toupper(character));
  }
  return text;
}

}  // namespace

const std::vector<std::pair<std::string, std::string>>& Typist::abbreviations() {
  static const std::vector<std::pair<std::string, std::string>> kAll{
      {"wsig", "Kind regards, Ada Lovelace"},
      {"wbrb", "be right back"},
      {"wo", "On my way!"},
      {"wlong", "<" + std::string(300, '-') + ">"}};
  return kAll;
}

void Typist::typePlainWord() {
  std::string word;
  for (int left = 1 + below(7); left > 0; --left) {
    const auto letter = kLetters[static_cast<std::size_t>(below(static_cast<int>(kLetters.size())))];
    word += below(10) == 0 ? static_cast<char>(std::toupper(letter)) : letter;
  }
  type({word + " ", {}, Promise::staysAsTyped});
}

void Typist::typeWords(int count, Promise promise) {
  for (; count > 0; --count) {
    if (below(3) == 0) {
      typeAbbreviation(promise);
    } else {
      typePlainWord();
    }
  }
}

void Typist::typeAbbreviation(Promise promise) {
  const auto& [abbreviation, text] =
      abbreviations()[static_cast<std::size_t>(below(static_cast<int>(abbreviations().size())))];
  type({abbreviation + " ", text + " ", promise});
}

void Typist::type(const TypedWord& word) {
  press(word.typed);
  auto noted = word;
  if (capsLocked_) noted = {withOtherCase(word.typed), {}, Promise::staysAsTyped};
  typed_.push_back(std::move(noted));
}

bool Typist::waitForArrival() {
  type({"\n", {}, Promise::staysAsTyped});
  const auto lines = std::ranges::count(typed_, "\n", &TypedWord::typed);
  return waitUntil([&] { return std::ranges::count(target_.text(), '\n') >= lines; });
}

std::string Typist::lastLine() const {
  auto text = target_.text();
  if (text.ends_with('\n')) text.pop_back();
  const auto begin = text.rfind('\n');
  return begin == std::string::npos ? text : text.substr(begin + 1);
}

std::chrono::milliseconds Typist::longestDeadTime() const {
  const auto arrivals = target_.arrivals();
  Clock::duration longest{};
  for (const auto pressed : pressed_) {
    const auto next = std::ranges::lower_bound(arrivals, pressed);
    if (next != arrivals.end()) longest = std::max(longest, *next - pressed);
  }
  return std::chrono::duration_cast<std::chrono::milliseconds>(longest);
}

void Typist::closeAccount() {
  const auto arrived = target_.text();
  const auto faults = faultsOf(typed_, arrived);
  if (faults.sum() > 0)
    result_.report += "expected: " + expectedText(typed_) + "\nactual:   " + arrived + "\n";
  result_.faults += faults;
  result_.longestDeadTime = std::max(result_.longestDeadTime, longestDeadTime());
  typed_.clear();
  pressed_.clear();
  target_.clear();
}

void Typist::press(const std::string& keys) {
  auto& keyboard = second_ ? desktop_.secondKeyboard() : desktop_.keyboard();
  for (const char each : keys) {
    pressed_.push_back(Clock::now());
    keyboard.type(std::string(1, each), gap_);
  }
}

}  // namespace quorlo
