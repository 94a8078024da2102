// Three processes change one library at random, learn of each other's changes at random moments, and must in
// the end all hold what the file holds.

#include "shared_library.h"
#include "store/sqlite/sqlite_database.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <type_traits>

namespace quorlo {
namespace {

class Process {
 public:
  Process(const std::filesystem::path& file, std::string name)
      : name_(std::move(name)),
        context_(
            openBackgroundContext(
                file, {.name = name_ + "_context", .transactionAuthor = name_, .now = [] { return Date{}; }})
                .value()),
        database_(file) {
    if (!database_.open(SqliteDatabase::Access::readOnly)) std::abort();
  }

  ManagedObjectContext& context() { return *context_; }

  void refresh() {
    const auto news =
        PersistentHistoryFetcher{database_, lastNews_, name_, name_ + "_context", context_->writer().session}
            .fetch()
            .value();
    if (news.empty()) return;
    lastNews_ = news.back().timestamp;
    const bool hadChanges = context_->hasChanges();
    ASSERT_TRUE(context_->refresh(walk(news).records));
    EXPECT_EQ(context_->hasChanges(), hadChanges);
  }

  void changeSomething(std::mt19937& random) {
    const auto snippet = any<QLSnippet>(random);
    const auto folder = any<QLCategory>(random);
    const auto app = any<QLApp>(random);
    const std::u16string text(1, static_cast<char16_t>(u'A' + random() % 20));
    const std::function<void()> changes[] = {
        [&] { context_->deleteObject(*snippet); },   [&] { context_->deleteObject(*folder); },
        [&] { context_->deleteObject(*app); },       [&] { snippet->setAbbreviation(text); },
        [&] { snippet->setText(bold(text)); },       [&] { snippet->setPlainText(text); },
        [&] { snippet->setCategory(folder.get()); }, [&] { snippet->addAllowedApp(*app); },
        [&] { snippet->removeAllowedApp(*app); },    [&] { folder->setTitle(text); },
        [&] { folder->addBlockedApp(*app); },        [&] { app->setBundleID(std::to_string(random() % 9)); },
        [&] { context_->releaseRichTexts(); },
    };
    changes[random() % std::size(changes)]();
  }

 private:
  // One of the records there are, or a new one.
  template <class Record>
  std::shared_ptr<Record> any(std::mt19937& random) {
    const auto all = context_->fetch<Record>({}).value();
    if (!all.empty() && random() % 8 != 0) return all[random() % all.size()];
    auto fresh = std::make_shared<Record>();
    if constexpr (!std::is_same_v<Record, QLApp>) fresh->setUuid(name_ + std::to_string(++made_));
    context_->insert(fresh);
    return fresh;
  }

  std::string name_;
  std::unique_ptr<ManagedObjectContext> context_;
  SqliteDatabase database_;
  Date lastNews_ = Date::min();
  int made_ = 0;
};

TEST(Sharing, EndsWithTheSameRecordsEverywhere) {
  for (unsigned seed = 0; seed < 25; ++seed) {
    SCOPED_TRACE(seed);
    SharedLibrary library;
    std::mt19937 random(seed);
    std::vector<std::unique_ptr<Process>> processes;
    for (const auto* name : {"a", "b", "c"}) {
      processes.push_back(std::make_unique<Process>(library.files.file, name));
    }
    for (int step = 0; step < 60; ++step) {
      auto& process = *processes[random() % processes.size()];
      process.changeSomething(random);
      if (random() % 6 == 0) {
        ASSERT_TRUE(process.context().save());
      }
      if (random() % 6 == 0) process.refresh();
    }
    for (int round = 0; round < 4; ++round) {
      for (const auto& each : processes) {
        ASSERT_TRUE(each->context().save());
        each->refresh();
      }
    }
    const auto stored = library.stored();
    for (const auto& each : processes) {
      EXPECT_FALSE(each->context().hasChanges());
      ASSERT_EQ(Description::of(each->context()), stored);
    }
  }
}

}  // namespace
}  // namespace quorlo
