#include "store/lookup/expansion_lookup.h"

#include "store/lookup/snippet_predicates.h"
#include "test_library.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace quorlo {
namespace {

// What liveSnippet promises, found by looking at every snippet.
std::shared_ptr<QLSnippet> scan(const ManagedObjectContext& context, std::u16string_view abbreviation) {
  const auto found =
      context.fetch<QLSnippet>({.predicate = liveAbbreviation(abbreviation),
                                .sortDescriptors = {{&QLSnippet::kCreationDate}, {&QLSnippet::kUuid}},
                                .fetchLimit = 1});
  return found.value().empty() ? nullptr : found.value().front();
}

TEST(ExpansionLookup, AgreesWithAScanThroughAnyRowOfChanges) {
  std::mt19937 random(7);
  const auto pick = [&random](std::size_t count) { return static_cast<std::size_t>(random() % count); };
  TestLibrary library;
  std::vector<std::u16string> abbreviations{u"", u"\u00E4", u"longer than the others"};
  for (int i = 0; i < 40; ++i)
    abbreviations.push_back(std::u16string(1 + pick(3), static_cast<char16_t>(u'a' + i % 5)));
  std::vector<std::shared_ptr<QLCategory>> folders;
  std::vector<std::shared_ptr<QLSnippet>> snippets;
  const auto folder = [&]() -> QLCategory* {
    return folders.empty() ? nullptr : folders[pick(folders.size())].get();
  };
  const auto snippet = [&]() -> QLSnippet& { return *snippets[pick(snippets.size())]; };
  const auto drop = [&](auto& records) {
    const auto at = records.begin() + static_cast<std::ptrdiff_t>(pick(records.size()));
    library.context.deleteObject(**at);
    records.erase(at);
  };

  const std::vector<std::function<void()>> operations{
      [&] { snippets.push_back(library.snippet(u"s", abbreviations[pick(abbreviations.size())])); },
      [&] { snippet().setAbbreviation(abbreviations[pick(abbreviations.size())]); },
      [&] { snippet().setCategory(pick(3) == 0 ? nullptr : folder()); },
      [&] { snippet().moveToTrash(); },
      [&] { snippet().restoreFromTrash(); },
      [&] { snippet().setCreationDate(Date(std::chrono::seconds(pick(3)))); },
      [&] {
        if (snippets.size() > 1 && pick(4) == 0) drop(snippets);
      },
      [&] { folders.push_back(library.folder(CategoryType::Folder)); },
      [&] {
        if (auto* it = folder()) it->setSourceType(static_cast<std::int64_t>(10 * pick(3)));
      },
      [&] {
        if (folders.size() > 3) drop(folders);
      },
  };
  snippets.push_back(library.snippet(u"s", u"a"));
  for (int step = 0; step < 3000; ++step) {
    operations[pick(operations.size())]();
    const auto& asked = abbreviations[pick(abbreviations.size())];
    ASSERT_EQ(library.context.liveSnippet(asked).value(), scan(library.context, asked)) << "step " << step;
  }
}

TEST(ExpansionLookup, FindsEveryOneOfManyAndNothingElse) {
  TestLibrary library;
  const auto abbreviation = [](int i) { return u"k" + std::u16string(1, static_cast<char16_t>(0x4E00 + i)); };
  std::vector<std::shared_ptr<QLSnippet>> snippets;
  for (int i = 0; i < 5000; ++i) snippets.push_back(library.snippet(u"s", abbreviation(i)));
  for (std::size_t i = 0; i < 5000; ++i) {
    if (i % 10 != 0) library.context.deleteObject(*snippets[i]);
  }
  for (std::size_t i = 0; i < 5000; ++i) {
    const auto expected = i % 10 == 0 ? snippets[i] : nullptr;
    ASSERT_EQ(library.context.liveSnippet(abbreviation(static_cast<int>(i))).value(), expected) << i;
    ASSERT_EQ(library.context.object(snippets[i]->objectID()), expected) << i;
  }
  EXPECT_EQ(library.titles({}).size(), 500U);
  EXPECT_EQ(library.context.liveSnippet(std::u16string(100000, u'k')).value(), nullptr);
}

TEST(ExpansionLookup, IsUpToDateWhenObserversHearOfAChange) {
  TestLibrary library;
  const auto snippet = library.snippet(u"a", u"old");
  std::shared_ptr<QLSnippet> seen;
  const auto subscription =
      snippet->observeChanges([&](std::string_view) { seen = library.context.liveSnippet(u"new").value(); });
  snippet->setAbbreviation(u"new");
  EXPECT_EQ(seen, snippet);
}

TEST(ExpansionLookup, KnowsApplicationsByIdentifierAndType) {
  TestLibrary library;
  const auto app = library.app("org.example.Editor", AppType::Blocked);
  const auto has = [&library](std::string_view bundleID, AppType type) {
    return library.context.hasApp(bundleID, static_cast<std::int64_t>(type)).value();
  };
  const auto twin = library.app("org.example.Editor", AppType::Blocked);
  app->setType(static_cast<std::int64_t>(AppType::Excluded));
  EXPECT_TRUE(has("org.example.Editor", AppType::Blocked));
  twin->setBundleID("org.example.Other");
  EXPECT_FALSE(has("org.example.Editor", AppType::Blocked));
  EXPECT_TRUE(has("org.example.Editor", AppType::Excluded));
  library.context.deleteObject(*app);
  EXPECT_FALSE(has("org.example.Editor", AppType::Excluded));
}

}  // namespace
}  // namespace quorlo
