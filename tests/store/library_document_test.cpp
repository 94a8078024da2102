#include "store/exchange/library_document.h"

#include "store/exchange/library_exchange.h"
#include "test_library.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>

namespace quorlo {
namespace {

constexpr std::string_view kLibrary = R"({
  "version": 1,
  "snippets": [
    {"uuid": "A", "title": "Signature", "text": "Kind regards", "formatted": 0, "abbreviation": "sig"},
    {"uuid": "b-2", "title": "", "text": {"string": "Hi", "runs": [{"location": 0, "length": 2, "bold": true}]}},
    {"text": "no uuid", "abbreviation": null}
  ],
  "folders": [
    {"uuid": "F", "title": "Work", "sort": -3, "expansionBehavior": 20, "allowedApps": ["org.example.Editor"],
     "blockedApps": ["org.example.Editor"], "snippets": ["A"]},
    {"title": "Shared", "type": 10, "snippets": ["b-2"]}
  ],
  "excludedApplications": ["org.example.Terminal"]
})";

TEST(LibraryDocument, FillsAnEmptyLibrary) {
  TestLibrary library;
  const auto report = readLibrary(kLibrary, "test.json", library.context);
  ASSERT_TRUE(report) << report.error().message;
  const auto signature = library.controller.snippet("A");
  EXPECT_EQ(signature->plainText(), u"Kind regards");
  EXPECT_TRUE(signature->titleIsCustom());
  EXPECT_EQ(library.context.liveSnippet(u"sig").value(), signature);
  const auto folder = signature->category();
  EXPECT_EQ(folder->uuid(), "F");
  ASSERT_EQ(folder->allowedApps().size(), 1U);
  EXPECT_NE(*folder->allowedApps().begin(), *folder->blockedApps().begin());

  const auto shared = library.controller.snippet("b-2");
  EXPECT_EQ(shared->type(), SnippetType::formatted);
  EXPECT_FALSE(shared->isLive());
  EXPECT_TRUE(library.context.hasApp("org.example.Terminal", 0).value());
}

TEST(LibraryDocument, AddsNothingWhenReadTwiceAndLeavesTheUsersChangesAlone) {
  TestLibrary library;
  ASSERT_TRUE(readLibrary(kLibrary, "test.json", library.context));
  library.controller.snippet("A")->setPlainText(u"mine");
  library.queue.settle();
  const auto again = readLibrary(kLibrary, "test.json", library.context);
  ASSERT_TRUE(again);
  EXPECT_EQ(again.value().added.size(), 0U);
  EXPECT_EQ(again.value().presentSnippets, 3U);
  EXPECT_FALSE(library.context.hasChanges());
  EXPECT_EQ(library.controller.snippet("A")->plainText(), u"mine");
}

TEST(LibraryDocument, TakesAPlainListOfSnippetsAndTellsTheOnesWithoutUuidApartByContent) {
  TestLibrary library;
  const auto brackets = R"({"text": "\" )" + std::string(40, '[') + R"("})";  // no nesting
  const auto report = readLibrary("\xEF\xBB\xBF[{\"text\": \"a\"}, " + brackets + ", {\"text\": \"a\"}]",
                                  "list", library.context);
  ASSERT_TRUE(report) << report.error().message;
  EXPECT_EQ(report.value().addedSnippets.size(), 2U);
}

TEST(LibraryDocument, KeepsASnippetWithoutAnAbbreviationThatCannotBe) {
  TestLibrary library;
  library.snippet(u"Old", u"taken");
  const std::string thirtyOne = "0123456789012345678901234567890";
  const auto report = readLibrary(R"({"snippets": [
      {"uuid": "1", "title": "First", "text": "t", "abbreviation": "two"},
      {"uuid": "2", "title": "Second", "text": "t", "abbreviation": "taken"},
      {"uuid": "4", "title": "Fourth", "text": "t", "abbreviation": "a b"},
      {"uuid": "5", "text": "secret", "abbreviation": ")" +
                                      thirtyOne + R"("},
      {"uuid": "6", "title": "Sixth", "text": "t", "abbreviation": ")" +
                                      thirtyOne.substr(1) + R"("},
      {"uuid": "7", "title": "Shared", "text": "t", "abbreviation": "two"}],
      "folders": [{"type": 10, "snippets": ["7"]}]})",
                                  "test.json", library.context);
  ASSERT_TRUE(report) << report.error().message;
  EXPECT_EQ(report.value().addedSnippets.size(), 6U);
  ASSERT_EQ(report.value().warnings.size(), 3U);
  EXPECT_EQ(report.value().warnings[0].holder->title(), u"Old");
  EXPECT_EQ(report.value().warnings[1].fault, AbbreviationFault::illegalCharacters);
  EXPECT_EQ(report.value().warnings[2].fault, AbbreviationFault::tooLong);
  logWarnings(report.value());
  EXPECT_EQ(
      library.log,
      (std::vector<std::string>{
          R"(WARNING: #ldc7Abr - The abbreviation of "Second" is already in use; the snippet was kept without it.)",
          R"(WARNING: #ldc7Abr - The abbreviation of "Fourth" contains a space; the snippet was kept without it.)",
          "WARNING: #ldc7Abr - The abbreviation of the snippet 5 is longer than 30 characters; the snippet "
          "was kept without it."}));
  EXPECT_EQ(library.controller.snippet("2")->abbreviation(), u"");
  EXPECT_EQ(library.controller.snippet("6")->abbreviation().size(), 30U);
  EXPECT_EQ(library.controller.snippet("7")->abbreviation(), u"two");
}

TEST(LibraryDocument, RefusesAFaultyDocumentWholeAndSaysWhereTheFaultIs) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"", "Line 1, column 1 is not JSON: a value is missing."},
      {"{\n  \"snippets\": [\n    \"ä\" x]}", "Line 3, column 9 is not JSON: a comma or ] is missing."},
      {"\xEF\xBB\xBF[{\"text\": \"ä\xFF\"}]", "Line 1, column 13 is not JSON: the text is not in UTF-8"},
      {"[1e999]", "Line 1, column 2 is not JSON: the number is too large."},
      {"[{\"text\": Hi}]", "column 11 is not JSON: a text needs quotation marks"},
      {"[{\"text\": \"a\nb\"}]", "Line 1, column 13 is not JSON: a line end"},
      {"[{\"text\": \"\\uD83D\"}]", "column 12 is not JSON: half a character"},
      {"[{\"text\": \"a\", \n\"t\\u0065xt\": \"b\"}]",
       "Line 2, column 1 is not JSON: the object has this key already"},
      {"[] []", "column 4 is not JSON: nothing may stand behind"},
      {std::string("[\0]\0", 4), "The document is in UTF-16. Save it in UTF-8."},
      {"\xFF\xFE[", "The document is in UTF-16."},
      {R"([{"text": "a", "title": "a\u0000"}])", "\"[0].title\" holds a NUL character"},
      {std::string(1'000'000, '['), "nested too deeply"},
      {"3", "\"document\" is neither a library"},
      {R"([{"text": "a"}, {"title": "b"}])", "\"[1].text\" is missing: every snippet needs a text."},
      {R"([{"text": {"string": "a", "runs": [{"location": 0, "length": 9}]}}])", "\"[0].text\""},
      {R"([{"text": "a", "formatted": 18446744073709551615}])", "\"[0].formatted\" is not a whole number."},
      {R"([{"text": "a", "abreviation": "x"}])", "\"[0].abreviation\" is not a key of a snippet"},
      {R"([{"text": "a", "uuid": "U"}, {"text": "b", "uuid": "U"}])",
       "\"[1].uuid\" stands in the document before"},
      {R"({"folders": [{"expansionBehavior": 5}]})",
       "\"folders[0].expansionBehavior\" is no expansion behavior"},
      {R"({"folders": [{"title": "W", "snippets": ["U"]}]})",
       "The folder \"W\" names the snippet U, which is neither"},
      {R"({"snippets": [{"text": "a", "uuid": "U"}],
           "folders": [{"title": "V", "snippets": ["U"]}, {"title": "W", "snippets": ["U"]}]})",
       "The snippet U is in two folders, \"V\" and \"W\""},
  };
  TestLibrary library;
  for (const auto& [json, message] : cases) {
    const auto result = readLibrary(json, "my.json", library.context);
    ASSERT_FALSE(result) << json;
    EXPECT_EQ(result.error().message.find("my.json: "), 0U) << result.error().message;
    EXPECT_NE(result.error().message.find(message), std::string::npos) << result.error().message;
    EXPECT_FALSE(library.context.hasChanges()) << json;
  }
}

TEST(LibraryDocument, SaysWhyAFileCannotBeRead) {
  TestLibrary library;
  const auto folder = std::filesystem::temp_directory_path();
  const auto missing = readLibraryFile(folder / "quorlo-no-such-file.json", library.context);
  ASSERT_FALSE(missing);
  EXPECT_EQ(missing.error().message,
            (folder / "quorlo-no-such-file.json").string() + " cannot be read: No such file or directory.");
  EXPECT_FALSE(readLibraryFile(folder, library.context));
}

TEST(LibraryDocument, RefusesEveryTruncatedDocumentAndIsNeverHalfRead) {
  for (std::size_t length = 0; length + 1 < kLibrary.size(); ++length) {
    TestLibrary library;
    ASSERT_FALSE(readLibrary(kLibrary.substr(0, length), "cut", library.context)) << length;
    ASSERT_FALSE(library.context.hasChanges());
  }
}

TEST(SnippetForm, HasExactlyFiveKeysInOrderAndTextAsAStringUnlessItHasAttributes) {
  QLSnippet snippet;
  snippet.setUuid("U");
  snippet.setTitle(u"T");
  snippet.setPlainText(u"P\n");
  snippet.setFormatted(8);
  snippet.setAbbreviation(u"a");
  EXPECT_EQ(toJson(exchangeForm(snippet)).dump(),
            R"({"uuid":"U","title":"T","text":"P\n","formatted":8,"abbreviation":"a"})");
  TextAttributes italic;
  italic.italic = true;
  snippet.setText(AttributedString(u"rich", italic));
  EXPECT_TRUE(toJson(exchangeForm(snippet))["text"].is_object());
}

}  // namespace
}  // namespace quorlo
