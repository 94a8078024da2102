#include "x11/keyboard/text_strokes.h"

#include "text/utf.h"

#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon.h>

namespace quorlo {
namespace {

constexpr std::uint32_t kCapsLock = 2;

// What the strokes for the text type, or "-" when there are none.
std::string typed(const std::string& layout, std::u16string_view text, std::uint32_t lockedModifiers = 0) {
  const auto map = KeyMap::named(layout, "", "").value();
  const KeyReader::Locks locks{.lockedModifiers = lockedModifiers};
  const auto strokes = strokesFor(text, map, 0, locks);
  if (!strokes) return "-";
  KeyReader reader(map, "C");
  reader.setLocks(locks);
  std::u16string result;
  for (const auto& stroke : *strokes) {
    for (const auto modifier : stroke.modifiers) reader.press(modifier);
    result += reader.readPress(stroke.key).event.characters;
    for (const auto modifier : stroke.modifiers) reader.release(modifier);
  }
  return toUtf8(result);
}

TEST(TextStrokesTest, ATextIsTypedAsTheLayoutHasIt) {
  EXPECT_EQ(typed("us", u"brb X1!# "), "brb X1!# ");
  EXPECT_EQ(typed("de", u"zy ÜßöÄ @€{~"), "zy ÜßöÄ @€{~");
  EXPECT_EQ(typed("fr", u"aq1&é"), "aq1&é");
  EXPECT_EQ(typed("us", u"brB1!", kCapsLock), "brB1!");
  EXPECT_EQ(typed("us", u""), "");
}

TEST(TextStrokesTest, ACharacterThatTheLayoutLacksMakesTheWholeTextImpossible) {
  EXPECT_EQ(typed("us", u"brbé"), "-");
  EXPECT_EQ(typed("ru", u"brb"), "-");
  EXPECT_EQ(typed("us", u"\U0001F600"), "-");
  EXPECT_EQ(typed("us", u"\xD83D"), "-");
}

}  // namespace
}  // namespace quorlo
