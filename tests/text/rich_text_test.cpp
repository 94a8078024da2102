#include "text/random_text.h"
#include "text/rich_text/rich_text_archive.h"
#include "text/rich_text/rich_text_json.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <string>
#include <vector>

namespace quorlo {
namespace {

using nlohmann::json;
using Bytes = std::vector<std::uint8_t>;

TEST(RichText, SurvivesBothEncodingsWhateverItHolds) {
  Random random(5);
  for (int round = 0; round < 2000; ++round) {
    const auto text = randomAttributedString(random);
    const auto throughFile = fromJson(json::parse(toJson(text).dump()));
    ASSERT_TRUE(throughFile.ok()) << throughFile.error().message;
    ASSERT_EQ(throughFile.value(), text);
    const auto throughStore = unarchive(archive(text));
    ASSERT_TRUE(throughStore.ok()) << throughStore.error().message;
    ASSERT_EQ(throughStore.value(), text);
  }
}

TEST(RichText, HasTheDocumentedJsonForm) {
  EXPECT_EQ(toJson(AttributedString(u"Grüße 🙂")), json("Grüße 🙂"));
  AttributedString text(u"🙂 ");
  text.append(u"bold", {.fontFamily = "Noto", .bold = true, .foreground = Color{204, 0, 0}});
  EXPECT_EQ(toJson(text), json::parse(R"({"string": "🙂 bold", "runs": [
      {"location": 3, "length": 4, "font": "Noto", "bold": true, "color": "#cc0000ff"}]})"));
  EXPECT_EQ(toJson(AttributedString(u"a\xD83D")), json::parse(R"({"utf16": "YQA92A=="})"));

  const auto byHand = fromJson(json::parse(R"({"string": "ab", "runs": [
      {"location": 1, "length": 1, "color": "#CC0000", "bold": false, "size": 12}]})"));
  AttributedString expected(u"a");
  expected.append(u"b", {.fontSizePoints = 12, .foreground = Color{204, 0, 0}});
  EXPECT_EQ(byHand.value(), expected);
}

TEST(RichText, NamesTheFirstThingThatIsWrongInABadValue) {
  const std::pair<const char*, const char*> cases[] = {
      {"{}", "\"string\" is missing"},
      {R"({"string": "a", "utf16": ""})", "stands beside it"},
      {R"({"utf16": "YQ=="})", "\"utf16\" holds half a code unit"},
      {R"({"string": "a", "sting": ""})", "\"sting\" is not known"},
      {R"({"string": "a", "runs": [{"length": -1}]})", "\"runs[0].length\" is not a whole number"},
      {R"({"string": "a", "runs": [{"location": 18446744073709551615, "length": 2}]})", "beyond the text"},
      {R"({"string": "abc", "runs": [{"length": 2}, {"location": 1, "length": 1}]})", "[1]\" begins before"},
      {R"({"string": "a", "runs": [{"length": 1, "size": 0}]})", "\"runs[0].size\" is not a number above 0"},
      {R"({"string": "a", "runs": [{"length": 1, "color": "#-1-1-1"}]})", "is not a colour"},
      {R"({"string": "a", "runs": [{"length": 1, "image": {"type": "image/png"}}]})", "image\" has no data"},
  };
  for (const auto& [text, message] : cases) {
    const auto result = fromJson(json::parse(text));
    ASSERT_FALSE(result.ok()) << text;
    EXPECT_NE(result.error().message.find(message), std::string::npos) << result.error().message;
  }
  // Built by a program, not parsed.
  EXPECT_FALSE(fromJson(json("a\xFF")).ok());
  EXPECT_FALSE(fromJson({{"string", "a"}, {"runs", {{{"length", 1}, {"size", std::nan("")}}}}}).ok());
}

TEST(RichTextArchive, IsRefusedWhereItIsCutAndReadAsAnErrorOrSomeTextWhereItIsDamaged) {
  Random random(6);
  int refused = 0;
  for (int round = 0; round < 1000; ++round) {
    auto bytes = archive(randomAttributedString(random));
    const auto cut = std::span(bytes).first(pick(random, bytes.size()));
    ASSERT_FALSE(unarchive(cut).ok()) << cut.size() << " of " << bytes.size();
    for (auto changes = 1 + pick(random, 3); changes > 0; --changes) {
      bytes[pick(random, bytes.size())] = static_cast<std::uint8_t>(pick(random, 256));
    }
    const auto result = unarchive(bytes);
    if (!result) ++refused;
    ASSERT_TRUE(!result || unarchive(archive(result.value())).value() == result.value());
  }
  EXPECT_GT(refused, 300);
}

TEST(RichTextArchive, RefusesWhatIsNewerAndWhatIsMadeToDoHarm) {
  const auto cbor = [](const json& value) { return json::to_cbor(value); };
  const auto repeated = [](std::uint8_t byte) { return Bytes(1'000'000, byte); };
  const std::pair<Bytes, const char*> cases[] = {
      {cbor({{"version", 2}, {"text", "a"}}), "version 2, but this program knows version 1 only"},
      {cbor({{"version", 1}}), "other things than a text"},
      {cbor({{"version", 1}, {"text", "a\xED\xA0\x80"}}), "not valid UTF-8 at byte 1"},
      {cbor({{"version", 1}, {"text", {{"string", "a"}, {"r\xFF", 1}}}}), "key that is not valid UTF-8"},
      {cbor({{"version", 1}, {"text", {{"utf16", "YQA="}}}}), "\"utf16\" is not a binary string"},
      {repeated(0x81), "nested too deeply"},   // arrays in arrays
      {repeated(0x7F), "cut off or damaged"},  // strings of unknown length in strings
      {repeated(0xC6), "holds a tag"},
      {{0xBB, 0x80, 0, 0, 0, 0, 0, 0, 0}, "cut off"},  // an object of 2^63 members
      {{0xA1, 0x01, 0x02}, "not CBOR"},                // a key that is a number
  };
  for (const auto& [bytes, message] : cases) {
    const auto result = unarchive(bytes);
    ASSERT_FALSE(result.ok()) << message;
    EXPECT_NE(result.error().message.find(message), std::string::npos) << result.error().message;
  }
}

}  // namespace
}  // namespace quorlo
