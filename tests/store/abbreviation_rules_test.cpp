#include "store/lookup/abbreviation_rules.h"

#include "test_library.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

constexpr auto kLastSymbol = AbbreviationTriggerType::lastSymbol;

struct RulesOfALibrary : TestLibrary {
  AbbreviationRules rules{context, quotationMarks("de_DE")};

  std::u16string message(std::u16string_view abbreviation, const QLSnippet& snippet) const {
    return rules.validate(abbreviation, snippet).value_or(u"");
  }
};

TEST(AbbreviationRules, LookAtCharactersThenAtLengthThenAtOtherSnippets) {
  RulesOfALibrary library;
  const auto edited = library.snippet(u"edited", u"own");
  library.snippet(u"Signature", u"sig");
  const std::u16string kIllegal = u"The abbreviation contains one or more illegal characters.";
  EXPECT_EQ(library.message(std::u16string(39, u'a') + u" ", *edited), kIllegal);
  EXPECT_EQ(library.message(u"a\u00A0b", *edited), kIllegal);
  EXPECT_EQ(library.log.back(), "abbreviation (3 characters) contains illegal characters");
  EXPECT_EQ(library.message(u"a\tb\n", *edited), u"");
  std::u16string flags;
  for (int i = 0; i < 30; ++i) flags += u"🇩🇪";
  EXPECT_EQ(library.message(flags, *edited), u"");
  EXPECT_EQ(library.message(flags + u"!", *edited), u"The abbreviation is too long.");
  EXPECT_EQ(library.message(u"sig", *edited), u"The abbreviation „sig“ is already in use by „Signature“.");
  EXPECT_EQ(library.message(u"Sig", *edited), u"");
  EXPECT_EQ(library.message(u"own", *edited), u"");
  EXPECT_EQ(library.message(u"", *edited), u"");
}

TEST(AbbreviationRules, PutArgumentsIntoTheMessageAsTheyAre) {
  RulesOfALibrary library;
  library.snippet(u"%d%@", u"%@");
  EXPECT_EQ(library.message(u"%@", *library.snippet(u"edited")),
            u"The abbreviation „%@“ is already in use by „%d%@“.");
}

TEST(AbbreviationRules, LetTrashedAndSharedSnippetsBlockNothingHoweverMany) {
  RulesOfALibrary library;
  const auto edited = library.snippet(u"edited", u"sig");
  library.snippet(u"shared", u"sig")
      ->setCategory(library.folder(CategoryType::SharedFolder, SourceType::Public).get());
  for (int i = 0; i < 3; ++i) library.snippet(u"trashed", u"sig")->moveToTrash();
  EXPECT_EQ(library.message(u"sig", *edited), u"");
  EXPECT_EQ(library.rules.prefixConflict(u"sign", *edited, kLastSymbol), nullptr);
  const auto live = library.snippet(u"", u"sig");
  EXPECT_EQ(library.message(u"sig", *edited), u"The abbreviation „sig“ is already in use by „Untitled“.");
  EXPECT_EQ(library.rules.prefixConflict(u"sign", *edited, kLastSymbol), live);
}

TEST(AbbreviationRules, FindTheShortestProperPrefixThatExpandsBefore) {
  RulesOfALibrary library;
  const auto edited = library.snippet(u"edited", u"a");
  EXPECT_EQ(library.rules.prefixConflict(u"abc", *edited, kLastSymbol), nullptr) << "its own is no conflict";
  const auto two = library.snippet(u"two", u"ab");
  const auto three = library.snippet(u"three", u"abc");
  EXPECT_EQ(library.rules.prefixConflict(u"abc", *edited, kLastSymbol), two);
  EXPECT_EQ(library.rules.prefixConflict(u"ab", *edited, kLastSymbol), nullptr);
  EXPECT_EQ(library.rules.prefixConflict(u"abc", *two, kLastSymbol), edited);
  EXPECT_EQ(library.rules.prefixConflict(u"abc", *two, AbbreviationTriggerType::delimiterKey), nullptr);
  EXPECT_EQ(library.rules.prefixConflict(u"", *two, kLastSymbol), nullptr);

  library.snippet(u"half a flag", u"🇩");
  EXPECT_EQ(library.rules.prefixConflict(u"🇩🇪x", *two, kLastSymbol), nullptr) << "a flag is one character";
}

}  // namespace
}  // namespace quorlo
