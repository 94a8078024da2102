#include "x11/keyboard/key_reader.h"

#include "text/utf.h"

#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon.h>

#include <map>

namespace quorlo {
namespace {

// Types keys named by keysym, with modifiers as "Shift_L+a", and reads each.
class Typist {
 public:
  explicit Typist(const std::string& layout, const std::string& variant = "", const std::string& options = "")
      : reader_(KeyMap::named(layout, variant, options).value(), "en_US.UTF-8") {}

  KeyDownEvent type(const std::string& chord) {
    const auto plus = chord.rfind('+');
    const auto modifier = plus == std::string::npos ? XKeycode{0} : key(chord.substr(0, plus));
    const auto keycode = key(chord.substr(plus + 1));
    if (modifier != 0) reader_.press(modifier);
    const auto reading = reader_.readPress(keycode);
    reader_.press(keycode);
    reader_.release(keycode);
    if (modifier != 0) reader_.release(modifier);
    endsComposition = reading.endsComposition;
    return reading.event;
  }
  std::string text(std::initializer_list<const char*> chords) {
    std::u16string result;
    for (const auto* chord : chords) result += type(chord).characters + u"|";
    return toUtf8(result);
  }
  XKeycode key(const std::string& name) const {
    return reader_.map().keyFor(xkb_keysym_from_name(name.c_str(), XKB_KEYSYM_NO_FLAGS), reader_.layout());
  }
  KeyReader& reader() { return reader_; }
  bool endsComposition = false;

 private:
  KeyReader reader_;
};

TEST(KeyReaderTest, LettersAreReadWithShiftCapsLockAndAltGr) {
  Typist german("de");
  EXPECT_EQ(german.text({"z", "Shift_L+z", "udiaeresis", "ISO_Level3_Shift+q", "ISO_Level3_Shift+e"}),
            "z|Z|ü|@|€|");
  EXPECT_EQ(german.type("z").keyCode, 16);  // the place of the US Y
  german.reader().setLocks({.lockedModifiers = 2});
  EXPECT_EQ(german.text({"a", "Shift_L+a"}), "A|a|");
  EXPECT_EQ(german.type("a").flags, modifier::kCapsLock);
}

TEST(KeyReaderTest, DeadKeysAndComposeGiveTheComposedCharacterAtTheirEnd) {
  Typist german("de");
  EXPECT_EQ(german.text({"dead_acute", "e"}), "|é|");
  EXPECT_TRUE(german.endsComposition);
  EXPECT_EQ(german.text({"dead_acute", "Shift_L+e", "x"}), "|É|x|");
  EXPECT_FALSE(german.endsComposition);
  EXPECT_EQ(german.text({"dead_acute", "x", "y"}), "||y|") << "no such character";
  Typist compose("us", "", "compose:menu");
  EXPECT_EQ(compose.text({"Multi_key", "o", "c", "c"}), "||©|c|");
}

TEST(KeyReaderTest, CommandsCarryTheirModifiersAndOnlyControlItsLetter) {
  Typist us("us");
  const auto control = us.type("Control_L+v");
  EXPECT_EQ(control.characters, u"v");
  EXPECT_EQ(control.flags, modifier::kCommand);
  EXPECT_EQ(control.keyCode, key::kV);
  const auto alt = us.type("Alt_L+v");
  EXPECT_EQ(alt.characters, u"");
  EXPECT_EQ(alt.flags, modifier::kOption);
  const auto super = us.type("Super_L+v");
  EXPECT_EQ(super.characters, u"");
  EXPECT_EQ(super.flags, modifier::kControl);
  EXPECT_EQ(us.type("Shift_L+v").flags, modifier::kShift);
}

TEST(KeyReaderTest, KeysWithoutTextCarryTheirPrivateCharacters) {
  Typist us("us");
  const std::map<std::string, std::pair<KeyCode, std::u16string>> expected{
      {"Return", {36, u"\r"}},      {"Tab", {48, u"\t"}},       {"BackSpace", {51, u"\x7F"}},
      {"Escape", {53, u"\x1B"}},    {"space", {49, u" "}},      {"KP_Enter", {76, u"\r"}},
      {"Delete", {117, u"\xF728"}}, {"Left", {123, u"\xF702"}}, {"KP_Left", {123, u"\xF702"}},
      {"Home", {115, u"\xF729"}},   {"F1", {122, u"\xF704"}},   {"F12", {111, u"\xF70F"}},
      {"Insert", {114, u"\xF727"}}, {"Menu", {110, u"\xF735"}}, {"XF86AudioRaiseVolume", {kNoKeyCode, u""}},
      {"KP_Multiply", {67, u"*"}},
  };
  for (const auto& [name, reading] : expected) {
    const auto event = us.type(name);
    EXPECT_EQ(event.keyCode, reading.first) << name;
    EXPECT_EQ(event.characters, reading.second) << name;
  }
  us.reader().setLocks({.lockedModifiers = 16});  // Num Lock
  EXPECT_EQ(us.type("KP_Left").characters, u"4");
}

TEST(KeyReaderTest, AnotherLayoutOfTheMapIsReadOnceItIsInEffect) {
  Typist two("us,ru");
  EXPECT_EQ(two.text({"v"}), "v|");
  two.reader().setLocks({.lockedGroup = 1});
  EXPECT_EQ(two.key("v"), 0);
  EXPECT_EQ(two.text({"Cyrillic_em"}), "м|");
  EXPECT_EQ(two.type("Cyrillic_em").keyCode, key::kV);
  EXPECT_EQ(two.reader().map().keyForInAnyLayout(XKB_KEY_v, 1), keycodeAtPlace(key::kV));
}

TEST(KeyReaderTest, AChangeOfTheMapKeepsTheKeysThatAreDown) {
  Typist us("us");
  us.reader().press(us.key("Shift_L"));
  us.reader().setMap(KeyMap::named("de", "", "").value());
  EXPECT_EQ(us.text({"y"}), "Y|");
  us.reader().release(us.key("Shift_L"));
  EXPECT_EQ(us.text({"y"}), "y|");
}

TEST(KeyTranslationTest, CodesAndPlacesLeadBackToEachOther) {
  const KeyMap us = KeyMap::named("us", "", "").value();
  // a row of letters, digits, punctuation, keypad, named keys
  for (const KeyCode code : std::initializer_list<KeyCode>{
           0,  1,  6,  9,  11, 12,  18,  29,  33,  42,  43,  44,  47,  50,  82,  91,  69,
           36, 48, 49, 51, 53, 114, 115, 116, 117, 119, 121, 123, 124, 125, 126, 122, 111}) {
    const auto keycode = us.keyForCode(code, 0);
    ASSERT_NE(keycode, 0) << code;
    // The keypad's keys have names without Num Lock, and places with it.
    const bool keypad = keycode >= 79 && keycode <= 91;
    EXPECT_EQ(keyCodeFor(keycode, keypad ? XKB_KEY_NoSymbol : us.keysym(keycode, 0)), code);
  }
  EXPECT_EQ(keycodeAtPlace(kNoKeyCode), 0);
}

TEST(KeyTranslationTest, ModifiersAreToldFromOtherKeysAndThoseThatLockFromThoseThatAreHeld) {
  for (const auto held : {XKB_KEY_Shift_R, XKB_KEY_Control_L, XKB_KEY_Alt_L, XKB_KEY_Super_L, XKB_KEY_Meta_L,
                          XKB_KEY_ISO_Level3_Shift, XKB_KEY_Mode_switch}) {
    EXPECT_TRUE(isModifier(held) && isHeldModifier(held)) << std::hex << held;
  }
  for (const auto lock : {XKB_KEY_Caps_Lock, XKB_KEY_Num_Lock, XKB_KEY_ISO_Next_Group}) {
    EXPECT_TRUE(isModifier(lock) && !isHeldModifier(lock)) << std::hex << lock;
  }
  for (const auto other :
       {XKB_KEY_a, XKB_KEY_Multi_key, XKB_KEY_dead_acute, XKB_KEY_Return, XKB_KEY_ISO_Left_Tab}) {
    EXPECT_FALSE(isModifier(other)) << std::hex << other;
  }
}

}  // namespace
}  // namespace quorlo
