#include "cli/shell_test.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <vector>

namespace quorlo {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

using SettingsTest = ShellTest;

TEST_F(SettingsTest, ReadingShowsDefaultsAndMakesNoFile) {
  EXPECT_THAT(
      out("quorlo settings list"),
      AllOf(HasSubstr("AbbreviationsEnabled\tfalse\n"), HasSubstr("SearchScopes\ttitle abbreviation text\n"),
            HasSubstr("AbbreviationsTriggerType\tdelimiterKey\n"), HasSubstr("SnippetSound\tMagnet\n"),
            HasSubstr("PasteBetweenSnippetPartsDelay\t0.2\n"), HasSubstr("firstLaunch\t\n")));
  EXPECT_EQ(out("quorlo settings list | grep -c '^numberOfLaunches'"), "1\n");
  EXPECT_EQ(out("quorlo settings get playsound"), "true\n");
  EXPECT_EQ(json::parse(out("quorlo settings get SnippetsSortOption --json")), json::parse(R"(
      {"key": "SnippetsSortOption", "type": "choice", "value": "creationDate", "default": "creationDate",
       "readOnly": false,
       "choices": ["title", "creationDate", "modificationDate", "abbreviation", "type", "useCount"],
       "meaning": "What lists of snippets are sorted by."})"));
  EXPECT_FALSE(std::filesystem::exists(home_ / ".config"));
}

TEST_F(SettingsTest, WhatIsSetIsStoredAsTheProgramStoresIt) {
  struct Case {
    const char* arguments;
    const char* output;
    const char* stored;
  };
  for (const auto& [arguments, output, stored] : std::vector<Case>{
           {"PlaySound off", "PlaySound: false\n", R"("PlaySound": false)"},
           {"snippetsound TAP", "SnippetSound: Tap\n", R"("SnippetSound": "Tap")"},
           {"AbbreviationsTriggerType lastSymbol", "AbbreviationsTriggerType: lastSymbol\n",
            R"("AbbreviationsTriggerType": 1)"},
           {"AbbreviationDelimiterKey tab . ,", "AbbreviationDelimiterKey: tab , .\n",
            R"("AbbreviationDelimiterKey": 73730)"},
           {"AbbreviationDelimiterKey none", "AbbreviationDelimiterKey: space\n",
            R"("AbbreviationDelimiterKey": 1)"},
           {"PasteBetweenSnippetPartsDelay 0.5", "PasteBetweenSnippetPartsDelay: 0.5\n",
            R"("PasteBetweenSnippetPartsDelay": 0.5)"},
       }) {
    EXPECT_EQ(out(std::string("quorlo settings set ") + arguments), output);
    EXPECT_THAT(content(".config/quorlo/settings.json"), HasSubstr(stored));
  }
  EXPECT_EQ(out("quorlo settings set AbbreviationsEnabled true"),
            "AbbreviationsEnabled: true\nAutoPasteEnabled: true\n");
  EXPECT_EQ(out("quorlo settings set SearchScopes 'title text'"), "SearchScopes: title text\n");
  EXPECT_EQ(json::parse(content(".config/quorlo/shared-settings.json")),
            json::parse(R"({"AbbreviationsEnabled": true, "SearchScopes": 5})"));
  out("quorlo settings set QLDebugModeEnabled on");
  EXPECT_THAT(content(".config/quorlo/settings.json"), HasSubstr("QLDebugEnabledDate"));

  EXPECT_EQ(out("quorlo settings reset PlaySound searchscopes"),
            "PlaySound: true\nSearchScopes: title abbreviation text\n");
  out("quorlo settings reset --all");
  EXPECT_EQ(json::parse(content(".config/quorlo/shared-settings.json")), json::object());
  EXPECT_THAT(content(".config/quorlo/settings.json"), Not(HasSubstr("SnippetSound")));
}

TEST_F(SettingsTest, WhatCannotBeSetSaysWhy) {
  struct Case {
    const char* arguments;
    const char* complaint;
  };
  for (const auto& [arguments, complaint] : std::vector<Case>{
           {"set Sound x", "There is no setting \"Sound\". There are:\n  SnippetSound\n  CustomSnippetSound"},
           {"get nonsense", "To see all: quorlo settings list"},
           {"set firstLaunch 2026-11-22", "is kept by Quorlo itself"},
           {"reset numberOfLaunches", "is kept by Quorlo itself"},
           {"set PlaySound loud", "\"loud\" is no value of PlaySound, which takes true or false"},
           {"set PasteBetweenSnippetPartsDelay 61", "takes seconds from 0 to 60"},
           {"set PasteBetweenSnippetPartsDelay nan", "takes seconds from 0 to 60"},
           {"set PreviewWindowPosition left", "takes one of: nextToCursor, centerOfScreen"},
           {"set SearchScopes title date", "or none: title abbreviation text"},
           {"set CustomSnippetSound ../x.wav", "is no sound file in "},
       }) {
    EXPECT_THAT(ShellTest::complaint(std::string("quorlo settings ") + arguments), HasSubstr(complaint));
  }
  EXPECT_EQ(run("quorlo settings reset").status, 2);
  EXPECT_EQ(run("quorlo settings set PlaySound").status, 2);
  EXPECT_FALSE(std::filesystem::exists(home_ / ".config"));

  std::filesystem::create_directories(home_ / ".config/quorlo");
  file(".config/quorlo/settings.json", "{\"PlaySound\": fal");
  EXPECT_THAT(complaint("quorlo settings set PlaySound true"),
              AllOf(HasSubstr("settings.json"), HasSubstr("line 1"), HasSubstr("move it away")));
  EXPECT_EQ(content(".config/quorlo/settings.json"), "{\"PlaySound\": fal");
  EXPECT_EQ(run("quorlo settings get PlaySound").out, "true\n");
}

}  // namespace
}  // namespace quorlo
