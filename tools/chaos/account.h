#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// A word that was typed, and what may stand in the text for it.
struct TypedWord {
  enum class Promise {
    staysAsTyped,
    expands,
    mayExpand,  // either, but whole
  };

  std::string typed;      // with its delimiter, as it arrives where nothing expands
  std::string expansion;  // with the delimiter; empty for a word that is no abbreviation
  Promise promise = Promise::staysAsTyped;
};

// The difference between what was typed and what arrived, in characters:
// lost    characters of a typed word or of its expansion that are not there;
// wrong   characters that were not typed; a character in place of another is lost and wrong. An expansion that
// is
//         missing, or that must not be there, is one more.
struct Faults {
  int lost = 0;
  int wrong = 0;

  int sum() const { return lost + wrong; }
  Faults& operator+=(const Faults& other) {
    lost += other.lost;
    wrong += other.wrong;
    return *this;
  }
  bool operator==(const Faults&) const = default;
};

// The fewest faults by which the words can have become this text.
Faults faultsOf(const std::vector<TypedWord>& words, std::string_view arrived);

// The text that is expected, for a message: "[as typed|expanded]" where both are right.
std::string expectedText(const std::vector<TypedWord>& words);

}  // namespace quorlo
