#include "text/attributed_string.h"

#include "text/random_text.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace quorlo {
namespace {

// The plainest thing that keeps the same promises: one set of attributes for each code unit.
struct Model {
  std::vector<std::pair<char16_t, TextAttributes>> units = {};

  static Model of(const AttributedString& text) {
    Model model;
    text.forEachRun([&](const AttributedString::Run& run) {
      for (auto i = run.range.location; i < run.range.end(); ++i) {
        model.units.emplace_back(text.string()[i], run.attributes);
      }
    });
    return model;
  }
  auto at(std::size_t position) { return units.begin() + static_cast<std::ptrdiff_t>(position); }
  Model slice(TextRange range) { return {{at(range.location), at(range.end())}}; }
  void replace(TextRange range, const Model& other) {
    units.erase(at(range.location), at(range.end()));
    units.insert(at(range.location), other.units.begin(), other.units.end());
  }
};

void expectSame(const AttributedString& text, const Model& model) {
  ASSERT_EQ(Model::of(text).units, model.units);
  bool plain = true;
  std::size_t runs = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto& attributes = model.units[i].second;
    ASSERT_EQ(text.attributesAt(i), attributes);
    plain = plain && attributes.isPlain();
    if (i == 0 || model.units[i - 1].second != attributes) ++runs;
  }
  ASSERT_EQ(text.isPlain(), plain);
  ASSERT_EQ(text.runCount(), runs);
}

TEST(AttributedString, BehavesAsTextWithAttributesOnEachUnitWhateverIsDoneToIt) {
  Random random(3);
  for (int round = 0; round < 200; ++round) {
    AttributedString text;
    Model model;
    for (int step = 0; step < 20; ++step) {
      const auto other = randomAttributedString(random);
      const auto attributes = pick(random, 2) == 0 ? TextAttributes() : randomAttributes(random);
      const auto location = pick(random, text.size() + 1);
      const TextRange range{location, pick(random, text.size() - location + 1)};
      const TextRange part = TextRange{pick(random, 4), pick(random, 9)}.clampedTo(other.size());
      const TextRange atEnd{text.size(), 0};
      switch (pick(random, 4)) {
        case 0:
          text.append(other, part);
          model.replace(atEnd, Model::of(other).slice(part));
          break;
        case 1:
          text.replace(range, other);
          model.replace(range, Model::of(other));
          break;
        case 2:
          text.setAttributes(range, attributes);
          for (auto i = range.location; i < range.end(); ++i) model.units[i].second = attributes;
          break;
        default:
          text.append(text, range);
          model.replace(atEnd, model.slice(range));
          break;
      }
      ASSERT_NO_FATAL_FAILURE(expectSame(text, model));
      ASSERT_EQ(Model::of(text.slice(part)).units, model.slice(part.clampedTo(text.size())).units);
    }
  }
}

TEST(AttributedString, ReplacesManyPlacesAsItDoesOneByOneFromTheEnd) {
  Random random(4);
  for (int round = 0; round < 300; ++round) {
    auto text = randomAttributedString(random);
    std::vector<AttributedString::Replacement> replacements;
    for (std::size_t at = pick(random, 3); at < text.size(); at += 1 + pick(random, 3)) {
      const TextRange range{at, pick(random, 3)};
      replacements.push_back({range, randomAttributedString(random)});
      at = range.end();
    }
    auto expected = text;
    for (auto it = replacements.rbegin(); it != replacements.rend(); ++it)
      expected.replace(it->range, it->text);
    text.replaceAll(replacements);
    ASSERT_EQ(text, expected);
  }
}

TEST(AttributedString, GivesReplacedTextTheLookOfItsPlaceButNotItsPicture) {
  const TextAttributes bold{.bold = true};
  const TextAttributes italic{.italic = true};
  AttributedString text(u"ab", bold);
  text.append(u"cd", italic);
  text.append(u"\uFFFC", {.bold = true, .image = ImageAttachment{nullptr, "image/png"}});
  const std::pair<TextRange, TextAttributes> cases[] = {
      {{1, 3}, bold}, {{2, 2}, italic}, {{2, 0}, bold}, {{0, 0}, bold}, {{4, 1}, bold}};
  for (const auto& [range, expected] : cases) {
    auto changed = text;
    changed.replace(range, u"new");
    EXPECT_EQ(changed.string().substr(range.location, 3), u"new");
    EXPECT_EQ(changed.attributesAt(range.location), expected) << range.location << " " << range.length;
  }
}

TEST(AttributedString, CutsAReplacementThatBeginsInsideAnEarlierOne) {
  AttributedString text(u"abcdef");
  text.replaceAll(std::vector<AttributedString::Replacement>{
      {{1, 3}, AttributedString(u"X")}, {{2, 1}, AttributedString(u"Y")}, {{5, 9}, AttributedString(u"Z")}});
  EXPECT_EQ(text, AttributedString(u"aXYeZ"));
}

}  // namespace
}  // namespace quorlo
