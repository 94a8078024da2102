#include "import/formats/clipping.h"
#include "import/formats/text_expander.h"
#include "import/formats/type_it_4_me.h"
#include "sample_files.h"
#include "text/utf.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

using Reader = Result<ImportData> (*)(std::string_view, std::string_view);

ImportData readSample(Reader read, const std::string& name) {
  auto data = read(sampleFile(name), name);
  EXPECT_TRUE(data) << name << ": " << (data ? "" : data.error().message);
  return data ? data.value() : ImportData();
}

// Folder, title, abbreviation and text of each snippet.
std::string described(const ImportData& data) {
  std::string text;
  for (const auto& snippet : data.snippets) {
    text += snippet.folder ? toUtf8(data.folders.at(*snippet.folder)) : "-";
    text += "|" + toUtf8(snippet.title) + "|" + toUtf8(snippet.abbreviation) + "|" +
            toUtf8(snippet.text.string()) + "\n";
  }
  return text;
}

std::string notices(const ImportData& data) {
  std::string text;
  for (const auto& [snippet, message] : data.notices) text += toUtf8(snippet) + ": " + toUtf8(message) + "\n";
  return text;
}

TEST(SampleFileTest, AGroupOfSnippetsIsAFolder) {
  for (const auto* const name : {"letters.textexpander", "letters-binary.textexpander"}) {
    const auto data = readSample(readTextExpander, name);
    EXPECT_EQ(described(data),
              "Letters & Notes|Signature|sig|Kind regards,\nAda Lovelace ✍️\n"
              "Letters & Notes|Date|ddate|Today is %date:dateLength=custom:dateFormat=%EEEE, %d. %MMMM "
              "%yyyy:timeLength=none:date%.%cursor%\n"
              "Letters & Notes|Letter|ltr|Dear %textfield:name=Name:default=Ada:textfield%,\n"
              "%snippet:abbreviation=sig:snippet%\n"
              "Letters & Notes||pct|100% sure\n"
              "Letters & Notes|List|ls|#!/bin/sh\nls %fill:folder%\n"
              "Letters & Notes|Logo|logo|\uFFFC\n"
              "Letters & Notes|Rich|rich|Bold words\n");
    EXPECT_EQ(notices(data),
              "List: The snippet is a script. It was kept as code and will not run.\n"
              "Rich: Only the text was kept, without its formatting.\n");
    ASSERT_EQ(data.snippets.size(), 7U);
    EXPECT_EQ(data.snippets[4].type, SnippetType::code);
    EXPECT_EQ(data.snippets[5].type, SnippetType::image);
    EXPECT_EQ(data.snippets[5].text.attributesAt(0).image->mediaType, "image/png");
  }
}

TEST(SampleFileTest, EachGroupOfABackupIsAFolder) {
  EXPECT_EQ(described(readSample(readTextExpander, "library.textexpanderbackup")),
            "One||a1|first\nTwo||a2|second\n");
}

TEST(SampleFileTest, AbbreviationsAndTheirTextsAreFoundWhereTheirKeysSayIt) {
  for (const auto* const name : {"words.typeit4me", "words-binary.typeit4me"}) {
    const auto data = readSample(readTypeIt4Me, name);
    EXPECT_EQ(described(data),
              std::string(name).substr(0, std::string(name).find('.')) + "|By the way|btw|by the way\n" +
                  std::string(name).substr(0, std::string(name).find('.')) +
                  "||pc|50% off %date:dateLength=custom:dateFormat=%%c:timeLength=none:date%ursor%\n");
    EXPECT_EQ(data.notices.size(), 2U);
  }
}

TEST(SampleFileTest, AClippingIsOneSnippet) {
  for (const auto* const name : {"greeting.textClipping", "greeting-xml.textClipping"}) {
    const auto data = readSample(readClipping, name);
    EXPECT_TRUE(described(data).ends_with("||Grüße\n")) << described(data);
    EXPECT_EQ(data.notices.size(), 1U);
  }
  const auto picture = readSample(readClipping, "picture.textClipping");
  EXPECT_EQ(described(picture), "-|picture||\uFFFC\n");
  EXPECT_EQ(picture.snippets.at(0).type, SnippetType::image);
}

std::string xml(const std::string& value) {
  return "<plist>" + value + "</plist>";
}

TEST(SampleFileTest, OlderFormsOfTextAreDecoded) {
  const auto text = [](const std::string& key, const std::string& value) {
    const auto data = readClipping(
        xml("<dict><key>UTI-Data</key><dict><key>" + key + "</key>" + value + "</dict></dict>"), "c");
    return data ? toUtf8(data.value().snippets.at(0).text.string()) : data.error().message;
  };
  EXPECT_EQ(text("public.utf16-plain-text", "<data>5AA=</data>"), "ä");      // E4 .. cut to one unit
  EXPECT_EQ(text("public.utf16-plain-text", "<data>/v8A5A==</data>"), "ä");  // big endian
  EXPECT_EQ(text("com.apple.traditional-mac-plain-text", "<data>iqc=</data>"), "äß");
  EXPECT_EQ(text("public.utf8-plain-text", "<string>%cursor%</string>"),
            "%date:dateLength=custom:dateFormat=%%c:timeLength=none:date%ursor%");
}

TEST(SampleFileTest, WrongKindsAreNamedByTheirKeys) {
  const struct {
    Reader read;
    std::string value;
    std::string message;
  } cases[] = {
      {readTextExpander,
       "<dict><key>snippetsTE2</key><array><dict><key>abbreviation</key><string>a</string></dict>"
       "<dict><key>plainText</key><integer>1</integer></dict></array></dict>",
       "“snippetsTE2[1].plainText” is a whole number, but should be a text"},
      {readTextExpander, "<array><dict><key>snippetType</key><true/></dict></array>",
       "“[0].snippetType” is yes or no"},
      {readTextExpander, "<dict><key>groupInfo</key><array/></dict>",
       "“groupInfo” is a list, but should be a dictionary"},
      {readTextExpander, "<dict><key>other</key><array/></dict>", "holds no snippets"},
      {readTypeIt4Me,
       "<dict><key>a</key><dict><key>Abbreviation</key><data/><key>text</key><string/></dict></dict>",
       "“a.Abbreviation” is data"},
      {readTypeIt4Me, "<array/>", "No abbreviations"},
      {readClipping, "<array/>", "UTI-Data"},
      {readClipping, "<dict><key>UTI-Data</key><dict/></dict>", "no text and no picture"},
      {readClipping, "<dict><key>UTI-Data</key><string/></dict>", "“UTI-Data” is a text"},
  };
  for (const auto& [read, value, message] : cases) {
    const auto data = read(xml(value), "file");
    ASSERT_FALSE(data) << message;
    EXPECT_NE(data.error().message.find(message), std::string::npos) << data.error().message;
  }
  for (const std::string& bytes :
       {std::string(), std::string("\0\5\x16\7\0\2", 6), std::string("\0\0\1\0", 4)}) {
    EXPECT_NE(readClipping(bytes, "c").error().message.find("resource fork"), std::string::npos);
  }
}

}  // namespace
}  // namespace quorlo
