#include "import/formats/property_lists/read_property_list.h"
#include "import/formats/text_expander.h"
#include "sample_files.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

std::string xml(const std::string& value) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">" +
         value + "</plist>\n";
}

std::string repeated(std::string_view text, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

std::string bigEndian(std::uint64_t number, std::size_t size) {
  std::string bytes(size, '\0');
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte, number >>= 8U)
    *byte = static_cast<char>(number);
  return bytes;
}

// A binary property list of these objects, the first of which is the root; references are one byte long.
std::string binary(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::string table;
  for (const auto& object : objects) {
    table += bigEndian(bytes.size(), 4);
    bytes += object;
  }
  const auto tableStart = bytes.size();
  return bytes + table + std::string(6, '\0') + "\4\1" + bigEndian(objects.size(), 8) + bigEndian(0, 8) +
         bigEndian(tableStart, 8);
}

std::string textOf(const std::string& bytes) {
  const auto list = readPropertyList(bytes);
  if (!list) return list.error().message;
  const auto* const text = list.value().as<std::u16string>();
  return text ? std::string(text->begin(), text->end()) : "no text";
}

TEST(PropertyListTest, TextsReadAsTheyStand) {
  const auto million = repeated("&amp;", 1'000'000);  // quadratic for the library
  EXPECT_EQ(textOf(xml("<string>" + million + "</string>")), repeated("&", 1'000'000));
  const std::pair<std::string, std::string> cases[] = {
      {"a &lt;b&gt; &quot;&#65;&#x42;&apos;", "a <b> \"AB'"},
      {"<![CDATA[<&amp;]]><![CDATA[>]]>", "<&amp;>"},
      {"a]]>&amp;]]&gt;", "a]]>&]]>"},
      {"a<!-- <b> -->c", "ac"},
      {"  spaces\n ", "  spaces\n "},
      {"", ""},
  };
  for (const auto& [written, text] : cases) EXPECT_EQ(textOf(xml("<string>" + written + "</string>")), text);
  EXPECT_EQ(textOf("\xEF\xBB\xBF\n" + xml("<!-- x --><string>a</string >")), "a");
}

TEST(PropertyListTest, BothFormsGiveTheSameValues) {
  for (const auto* const form : {"kinds_xml", "kinds_binary"}) {
    const auto list = readPropertyList(sampleFile(std::string("../../fuzz/seeds/plist/") + form));
    ASSERT_TRUE(list) << list.error().message;
    const auto* const values = list.value().find("d")->as<PropertyList::Array>();
    ASSERT_TRUE(values && values->size() == 8);
    EXPECT_EQ(*(*values)[0].as<std::int64_t>(), 1);
    EXPECT_EQ(*(*values)[1].as<std::int64_t>(), -2);
    EXPECT_TRUE(*(*values)[2].as<bool>());
    EXPECT_EQ(*(*values)[3].as<double>(), 1.5);
    EXPECT_EQ(*(*values)[4].as<std::u16string>(), u"é");
    EXPECT_EQ(*(*values)[5].as<PropertyList::Data>(), PropertyList::Data{'x'});
    EXPECT_EQ(*(*values)[6].as<PropertyList::Other>(), PropertyList::Other::date);
    EXPECT_TRUE((*values)[7].find("k")->as<PropertyList::Array>()->empty());
  }
}

struct Damaged {
  std::string bytes;
  std::string message;  // a part of it
};

TEST(PropertyListTest, DamagedXmlIsRefusedWithItsLine) {
  const Damaged cases[] = {
      {"", "empty"},
      {"{ key = value; }", "no property list"},
      {"\xFF\xFE<", "UTF-16"},
      {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>", "Line 1: the file is in the encoding iso-8859-1"},
      {"<!DOCTYPE plist [\n<!ENTITY a \"aaaa\">]><plist><string>&a;</string></plist>",
       "Line 1: the file declares"},
      {xml("<string>&a;</string>"), "Line 3: “&” begins no reference"},
      {xml("<string>a&#0;</string>"), "Line 3: “&” begins no reference"},
      {xml("<string>&#xD800;</string>"), "Line 3: “&” begins no reference"},
      {xml("<string>a\n" + std::string(1, '\0') + "</string>"), "Line 3: a text has a NUL"},
      {xml("<string>\xFF</string>"), "Line 3: a text is not in UTF-8"},
      {xml("\n<integer>12a</integer>"), "Line 4: what stands in <integer>"},
      {xml("<integer>18446744073709551616</integer>"), "<integer>"},
      {xml("<real>0x</real>"), "<real>"},
      {xml("<date>yesterday</date>"), "<date>"},
      {xml("<data>QUJ</data>"), "<data>"},
      {xml("<true>1</true>"), "<true>"},
      {xml("<dict><string>a</string></dict>"), "<string> has no <key>"},
      {xml("<dict><key>a</key><key>b</key></dict>"), "a <key> stands where"},
      {xml("<dict><key>a</key></dict>"), "a <key> has no value"},
      {xml("<array><key>a</key></array>"), "a <key> stands where"},
      {xml("<string>a</string><string>b</string>"), "more than one value"},
      {xml(""), "<plist> is empty"},
      {xml("<dict>a</dict>"), "text where an element belongs"},
      {xml("<string><b/></string>"), "<string> has another element"},
      {xml("<set/>"), "<set…> does not belong here"},
      {xml("<array></dict>"), "</dict…> does not belong here"},
      {xml("<true/>") + "<true/>", "<true…> does not belong here"},
      {xml(repeated("<array>", 500'000)), "nested too deeply"},
      {xml("<dict>" + repeated("<key>a</key><true/>", 100'001) + "</dict>"), "more than 100,000 keys"},
      {xml("<string>" + repeated("%z", 1 << 24) + "a</string>"), "more than 32 MiB of text"},
      {xml("<array>" + repeated("<true/>", 4'000'001) + "</array>"), "more than four million values"},
  };
  for (const auto& [bytes, message] : cases) {
    const auto list = readPropertyList(bytes);
    ASSERT_FALSE(list) << message;
    EXPECT_NE(list.error().message.find(message), std::string::npos) << list.error().message;
  }
}

TEST(PropertyListTest, DamagedAndHostileBinariesAreRefusedWithTheirObject) {
  // Each of eight lists holds the next one ten times: a hundred million values in 150 bytes.
  std::vector<std::string> bomb;
  for (int i = 1; i <= 8; ++i) bomb.push_back('\xAA' + std::string(10, static_cast<char>(i)));
  bomb.emplace_back("\x51x");
  // One text of 64 KiB 5,000 times.
  std::vector<std::string> shared{"\xAF\x11" + bigEndian(5000, 2) + std::string(5000, '\1'),
                                  "\x5F\x12" + bigEndian(65'536, 4) + std::string(65'536, 'x')};
  std::vector<std::string> chain;
  for (int i = 1; i < 100; ++i) chain.push_back(std::string("\xA1") + static_cast<char>(i));
  chain.emplace_back("\x51x");
  // 40 lists inside each other, first met at the top and then below 40 others.
  std::vector<std::string> meeting{std::string("\xA2\1\x29")};
  for (int i = 2; i <= 80; ++i) meeting.push_back(std::string("\xA1") + static_cast<char>(i == 41 ? 81 : i));
  meeting[80 - 1] = "\xA1\1";
  meeting.insert(meeting.end(), {"\x51x", "\x51x"});

  auto wrongTable = binary({"\x51x"});
  wrongTable[wrongTable.size() - 1] = '\x7F';
  const Damaged cases[] = {
      {binary(bomb), "stands for too much"},
      {binary(shared), "stands for too much"},
      {binary(chain), "nested too deeply"},
      {binary(meeting), "nested too deeply"},
      {binary({std::string("\xA1\0", 2)}), "Object 0 (byte 8) of the file contains itself"},
      {binary({"\xA1\1", std::string("\xA1\0", 2)}), "contains itself"},
      {binary({"\xA1\5"}), "refers to an object that is not there"},
      {binary({"\xD1\1\1", "\x10\1"}), "Object 1 (byte 11) of the file is the key"},
      {binary({std::string("\x53"
                           "a\0b",
                           4)}),
       "NUL"},
      {binary({std::string("\x62\0a\0\0", 5)}), "NUL"},
      {binary({std::string("\x61\xD8\0", 3)}), "well-formed UTF-16"},
      {binary({"\x60"}), "empty text"},
      {binary({"\x51\xFF"}), "no ASCII text"},
      {binary({std::string("\0", 1)}), "of a kind"},
      {binary({"\xC1\1", "\x51x"}), "of a kind"},
      {binary({"\x5Axyz"}), "is cut off"},
      {binary({"\xAF\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"}), "is cut off"},
      {wrongTable, "table at the end"},
      {"bplist00", "table at the end"},
  };
  for (const auto& [bytes, message] : cases) {
    const auto list = readPropertyList(bytes);
    ASSERT_FALSE(list) << message;
    EXPECT_NE(list.error().message.find(message), std::string::npos)
        << message << ": " << list.error().message;
  }
}

TEST(PropertyListTest, AFileThatIsCutAnywhereIsRefused) {
  for (const auto* const name : {"letters.textexpander", "letters-binary.textexpander"}) {
    auto whole = sampleFile(name);
    while (whole.ends_with('\n')) whole.pop_back();
    ASSERT_TRUE(readTextExpander(whole, name));
    for (std::size_t length = 0; length < whole.size(); ++length) {
      EXPECT_FALSE(readTextExpander(whole.substr(0, length), name)) << name << " at " << length;
    }
  }
}

}  // namespace
}  // namespace quorlo
