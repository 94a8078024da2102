#include "base/localized.h"
#include "base/log.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

const fs::path kTranslations = QUORLO_TRANSLATIONS;
constexpr std::u16string_view kPasteHint = u"Press ⌘V to insert snippet.";

TEST(Localized, NamesThePlatformsChordInTheFirstLanguageThatHasACatalogueEvenInTheCLocale) {
  ASSERT_EQ(setenv("LC_ALL", "C", 1), 0);
  using Languages = std::vector<std::string>;
  const std::pair<Languages, std::u16string_view> cases[] = {
      {{}, u"Press Ctrl+V to insert snippet."},
      {{"en_GB", "de_DE"}, u"Press Ctrl+V to insert snippet."},
      {{"tlh_XX", "de_AT", "en_US"}, u"Drücke Strg+V, um das Snippet einzufügen."},
  };
  for (const auto& [languages, hint] : cases) {
    const auto translations = loadCatalogues(kTranslations, languages);
    EXPECT_EQ(localized(kPasteHint), hint);
    EXPECT_EQ(localized(u"No catalogue has this."), u"No catalogue has this.");
  }
  EXPECT_EQ(localized(kPasteHint), kPasteHint);
}

TEST(Localized, LeavesOutADamagedCatalogueWhereverItIsCut) {
  std::ifstream whole(kTranslations / "en.mo", std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(whole), {});
  ASSERT_GT(bytes.size(), 28U);
  const auto directory = fs::path(testing::TempDir()) / "cut_catalogue";
  fs::create_directories(directory);
  std::size_t warnings = 0;
  const auto log = redirectLog([&](LogLevel, std::string_view) { ++warnings; });
  // The last byte only ends the last text.
  for (std::size_t length = 0; length + 1 < bytes.size(); ++length) {
    std::ofstream(directory / "en.mo", std::ios::binary) << bytes.substr(0, length);
    const auto translations = loadCatalogues(directory, {"en"});
    EXPECT_EQ(localized(kPasteHint), kPasteHint) << length;
    EXPECT_EQ(warnings, length + 1);
  }
  fs::remove_all(directory);
}

}  // namespace
}  // namespace quorlo
