// Three processes change one library at random, learn of each other's changes at random moments, and must in
// the end all hold what the file holds.

#include "shared_library.h"
#include "store/sqlite/sqlite_database.h"

#include <gtest/gtest.h>

#include <random>

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
        PersistentHistoryFetcher{database_, lastNews_, name_, name_ + "_context"}.fetch().value();
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
    switch (random() % 14) {
      case 0: {
        const auto fresh = context_->insert<QLSnippet>();
        fresh->setUuid("snippet");
        fresh->setText(bold(text));
        fresh->setCategory(folder.get());
        if (app) fresh->addAllowedApp(*app);
        return;
      }
      case 1: {
        const auto fresh = context_->insert<QLCategory>();
        fresh->setUuid("folder");
        if (app) fresh->addBlockedApp(*app);
        return;
      }
      case 2:
        context_->insert<QLApp>();
        return;
      case 3:
        return snippet ? context_->deleteObject(*snippet) : void();
      case 4:
        return folder ? context_->deleteObject(*folder) : void();
      case 5:
        return app ? context_->deleteObject(*app) : void();
      case 6:
        return snippet ? snippet->setAbbreviation(text) : void();
      case 7:
        return snippet ? snippet->setText(random() % 2 == 0 ? bold(text) : AttributedString(text)) : void();
      case 8:
        return snippet ? snippet->setCategory(folder.get()) : void();
      case 9:
        return snippet && app ? snippet->addAllowedApp(*app) : void();
      case 10:
        return snippet && app ? snippet->removeAllowedApp(*app) : void();
      case 11:
        return folder ? folder->setTitle(text) : void();
      case 12:
        return app ? app->setType(static_cast<std::int64_t>(random() % 5)) : void();
      default:
        context_->releaseRichTexts();
    }
  }

 private:
  template <class Record>
  std::shared_ptr<Record> any(std::mt19937& random) {
    const auto all = context_->fetch<Record>({}).value();
    return all.empty() ? nullptr : all[random() % all.size()];
  }

  std::string name_;
  std::unique_ptr<ManagedObjectContext> context_;
  SqliteDatabase database_;
  Date lastNews_ = Date::min();
};

TEST(Sharing, EndsWithTheSameRecordsEverywhere) {
  for (unsigned seed = 0; seed < 25; ++seed) {
    SCOPED_TRACE(seed);
    SharedLibrary library;
    std::mt19937 random(seed);
    std::vector<std::unique_ptr<Process>> processes;
    for (const auto* name : {"a", "b", "c"}) {
      processes.push_back(std::make_unique<Process>(library.directory / kStoreFileName, name));
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
