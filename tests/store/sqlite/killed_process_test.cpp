// Real processes over one library: killed at any moment, and two at a time.

#include "child_process.h"
#include "open_library.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/records/ql_user.h"
#include "test_store.h"
#include "text/utf.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <map>
#include <random>

namespace quorlo {
namespace {

// Every round adds a snippet, puts the one before it into the folder and counts a use of it, and now and
// then deletes an older one or makes one rich. What the library holds after a round is known from its
// number alone.
constexpr int kRichEvery = 4;
constexpr int kDeleteEvery = 3;
constexpr int kDeletedAge = 5;

void playRound(OpenLibrary& library, int round) {
  std::map<std::u16string, std::shared_ptr<QLSnippet>> byTitle;
  for (auto& each : library.all<QLSnippet>()) byTitle.emplace(each->title(), each);
  const auto titled = [&byTitle](int number) -> QLSnippet* {
    const auto found = byTitle.find(u"Round " + toUtf16(std::to_string(number)));
    return found == byTitle.end() ? nullptr : found->second.get();
  };
  auto& context = library.context();
  const auto users = library.all<QLUser>();
  const auto user = users.empty() ? context.insert<QLUser>() : users.front();
  user->setSavedChars(round);
  const auto folders = library.all<QLCategory>();
  const auto folder = folders.empty() ? context.insert<QLCategory>() : folders.front();

  const auto added = context.insert<QLSnippet>();
  added->setTitle(u"Round " + toUtf16(std::to_string(round)));
  AttributedString text(u"Text of round " + toUtf16(std::to_string(round)));
  if (round % kRichEvery == 0) text.setAttributes({0, 4}, {.bold = true});
  added->setText(text);
  if (auto* const before = titled(round - 1)) {
    before->setCategory(folder.get());
    before->setUseCount(round);
  }
  if (auto* const old = titled(round - kDeletedAge); old != nullptr && round % kDeleteEvery == 0) {
    context.deleteObject(*old);
  }
}

bool isDeletedAfter(int number, int round) {
  const int deletion = number + kDeletedAge;
  return deletion <= round && deletion % kDeleteEvery == 0;
}

std::string line(int number, std::int64_t useCount, bool hasFolder, bool isBold) {
  return "Round " + std::to_string(number) + "|" + std::to_string(useCount) + (hasFolder ? "|folder" : "") +
         (isBold ? "|bold" : "") + "\n";
}

std::string expectedAfter(int round) {
  std::string all;
  for (int number = 1; number <= round; ++number) {
    if (isDeletedAfter(number, round)) continue;
    const bool isLast = number == round;
    all += line(number, isLast ? 0 : number + 1, !isLast, number % kRichEvery == 0);
  }
  return all;
}

std::string found(OpenLibrary& library) {
  std::string all;
  for (const auto& each : library.all<QLSnippet>()) {
    all += toUtf8(each->title()) + "|" + std::to_string(each->useCount()) +
           (each->category() ? "|folder" : "") + (each->text().attributesAt(0).bold ? "|bold" : "") + "\n";
  }
  return all;
}

int setting(const char* name, int otherwise) {
  const char* const value = std::getenv(name);
  return value == nullptr ? otherwise : std::atoi(value);
}

TEST(KilledProcess, EverySaveThatReturnedIsThereAndNoneIsHalf) {
  const auto seed = setting("QUORLO_KILL_SEED", 20231114);
  const int rounds = setting("QUORLO_KILL_ROUNDS", 1000);
  SCOPED_TRACE("QUORLO_KILL_SEED=" + std::to_string(seed));
  std::mt19937 random(static_cast<unsigned>(seed));
  TestStore test;
  int last = 0;
  while (last < rounds) {
    ChildProcess child([&](const Channel& parent) {
      OpenLibrary library(test.directory);
      if (!library.failure().empty()) return;
      for (int round = last + 1;; ++round) {
        playRound(library, round);
        if (!library.context().save()) return;
        parent.send(round);
      }
    });
    int returned = last;
    const auto enough = last + 20 + static_cast<int>(random() % 10);
    while (returned < enough) {
      const auto round = child.channel().number();
      ASSERT_TRUE(round) << "after round " << returned;
      returned = *round;
    }
    // Somewhere within the next save.
    const auto moment = std::chrono::steady_clock::now() + std::chrono::microseconds(random() % 2000);
    while (std::chrono::steady_clock::now() < moment) {
    }
    child.kill();
    while (const auto round = child.channel().number()) returned = *round;

    OpenLibrary library(test.directory);
    ASSERT_EQ(library.failure(), "");
    last = static_cast<int>(library.all<QLUser>().front()->savedChars());
    ASSERT_TRUE(last == returned || last == returned + 1) << last << " is there, " << returned << " returned";
    ASSERT_EQ(found(library), expectedAfter(last));
  }
  const auto store = test.open();
  EXPECT_EQ(rows(*store.value(), "PRAGMA integrity_check", 1), "ok\n");
  EXPECT_EQ(rows(*store.value(), "PRAGMA foreign_key_check", 1), "");
  EXPECT_EQ(rows(*store.value(), "SELECT count(*) FROM HistoryTransaction", 1), std::to_string(last) + "\n");
}

TEST(TwoProcesses, EditsOfDifferentPropertiesOfOneSnippetBothSurvive) {
  TestStore test;
  ChildProcess child([&](const Channel& parent) {
    {
      OpenLibrary library(test.directory);
      library.context().insert<QLSnippet>()->setTitle(u"as it was");
      if (!library.context().save()) return;
      parent.send(1);
      if (!parent.number()) return;
      library.all<QLSnippet>().front()->setTitle(u"title of one");
      if (!library.context().save()) return;
    }
    parent.send(2);
  });
  ASSERT_EQ(child.channel().number(), 1);
  OpenLibrary library(test.directory);
  library.all<QLSnippet>().front()->setAbbreviation(u"other");
  ASSERT_TRUE(library.context().save());
  child.channel().send(1);
  ASSERT_EQ(child.channel().number(), 2);

  OpenLibrary again(test.directory);
  ASSERT_EQ(again.all<QLSnippet>().size(), 1U);
  EXPECT_EQ(again.all<QLSnippet>().front()->title(), u"title of one");
  EXPECT_EQ(again.all<QLSnippet>().front()->abbreviation(), u"other");
}

}  // namespace
}  // namespace quorlo
