#include "chaos/account.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>

namespace quorlo {

namespace {

using Promise = TypedWord::Promise;

constexpr Faults kImpossible{1'000'000, 1'000'000};

const Faults& better(const Faults& left, const Faults& right) {
  return right.sum() < left.sum() ? right : left;
}

Faults plus(Faults faults, int lost, int wrong) {
  return faults += {lost, wrong};
}

// The faults of each beginning of the text, by its length.
using Beginnings = std::vector<Faults>;

// Goes on by a text that should come next.
Beginnings followedBy(Beginnings row, std::string_view text, std::string_view arrived) {
  for (std::size_t i = 1; i < row.size(); ++i) row[i] = better(row[i], plus(row[i - 1], 0, 1));
  for (const char character : text) {
    Beginnings next(row.size(), kImpossible);
    next[0] = plus(row[0], 1, 0);
    for (std::size_t i = 1; i < row.size(); ++i) {
      const int differs = arrived[i - 1] == character ? 0 : 1;
      next[i] =
          better(plus(row[i - 1], differs, differs), better(plus(row[i], 1, 0), plus(next[i - 1], 0, 1)));
    }
    row = std::move(next);
  }
  return row;
}

}  // namespace

Faults faultsOf(const std::vector<TypedWord>& words, std::string_view arrived) {
  Beginnings row(arrived.size() + 1, kImpossible);
  row[0] = {};
  for (const auto& word : words) {
    auto next = followedBy(row, word.typed, arrived);
    if (word.promise == Promise::expands) {
      for (auto& each : next) each += {0, 1};
    }
    if (!word.expansion.empty()) {
      const auto expanded = followedBy(row, word.expansion, arrived);
      const int unwanted = word.promise == Promise::staysAsTyped ? 1 : 0;
      for (std::size_t i = 0; i < next.size(); ++i) next[i] = better(next[i], plus(expanded[i], 0, unwanted));
    }
    row = std::move(next);
  }
  return followedBy(std::move(row), {}, arrived).back();
}

std::string expectedText(const std::vector<TypedWord>& words) {
  std::string text;
  for (const auto& word : words) {
    switch (word.promise) {
      case Promise::staysAsTyped:
        text += word.typed;
        break;
      case Promise::expands:
        text += word.expansion;
        break;
      case Promise::mayExpand:
        text += "[" + word.typed + "|" + word.expansion + "]";
        break;
    }
  }
  return text;
}

}  // namespace quorlo
