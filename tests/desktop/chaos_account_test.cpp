// The account of what was typed under disturbances: it must not find too much, nor too little.
#include "chaos/account.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

using Promise = TypedWord::Promise;

std::vector<TypedWord> typed(Promise promise) {
  return {{"one ", {}, Promise::staysAsTyped},
          {"brb ", "be right back ", promise},
          {"two\n", {}, Promise::staysAsTyped}};
}

TEST(ChaosAccount, CountsEveryCharacterAndExpansion) {
  const struct {
    Promise promise;
    std::string arrived;
    Faults faults;
  } cases[] = {
      {Promise::expands, "one be right back two\n", {0, 0}},
      {Promise::staysAsTyped, "one brb two\n", {0, 0}},
      {Promise::mayExpand, "one brb two\n", {0, 0}},
      {Promise::mayExpand, "one be right back two\n", {0, 0}},
      {Promise::expands, "one brb two\n", {0, 1}},
      {Promise::staysAsTyped, "one be right back two\n", {0, 1}},
      {Promise::expands, "oe be right back two\n", {1, 0}},
      {Promise::expands, "one be right back twwo\n", {0, 1}},
      {Promise::expands, "one be right back tow\n", {1, 1}},
      {Promise::expands, "one be rght back two\n", {1, 0}},
      {Promise::mayExpand, "one b two\n", {2, 0}},
      {Promise::expands, "xone be right back two\nx", {0, 2}},
      {Promise::mayExpand, "", {12, 0}},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(faultsOf(typed(each.promise), each.arrived), each.faults) << each.arrived;
  }
  EXPECT_EQ(faultsOf({}, "abc"), (Faults{0, 3}));
  EXPECT_EQ(expectedText(typed(Promise::mayExpand)), "one [brb |be right back ]two\n");
}

}  // namespace
}  // namespace quorlo
