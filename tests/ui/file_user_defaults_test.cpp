#include "ui/desktop/file_user_defaults.h"
#include "base/log.h"
#include "platform/user_defaults_contract.h"
#include "ui/event_loop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto kStandard = DefaultsDomain::standard;

class FileUserDefaultsTest : public testing::Test {
 protected:
  FileUserDefaults& open() {
    defaults_.emplace(directory_);
    changes_.clear();
    observation_ = defaults_->observeExternalChanges(
        [this](DefaultsDomain, const std::string& key) { changes_.push_back(key); });
    return *defaults_;
  }

  std::string content() const {
    std::ifstream stream(file_);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  }

  void edit(const std::string& text) const {
    fs::create_directories(directory_);
    std::ofstream(file_) << text;
  }

  std::vector<std::string> log_;
  Subscription logged_ = redirectLog([this](LogLevel, std::string_view line) { log_.emplace_back(line); });
  QTemporaryDir temporary_;
  fs::path directory_ = fs::path(temporary_.path().toStdString()) / "config" / "quorlo";
  fs::path file_ = directory_ / "settings.json";
  std::optional<FileUserDefaults> defaults_;
  std::vector<std::string> changes_;
  Subscription observation_;
};

TEST_F(FileUserDefaultsTest, KeepTheContractAndEveryValueAcrossAStart) {
  writeValuesOfEveryType(open());
  expectValuesOfEveryType(*defaults_);
  expectTheLastWriteToHold(*defaults_);
  expectValuesOfEveryType(open());
  EXPECT_EQ(fs::status(file_).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(fs::status(directory_).permissions(), fs::perms::owner_all);
  EXPECT_THAT(log_, IsEmpty());
}

TEST_F(FileUserDefaultsTest, SeeWhatAnotherProcessWritesAndSayNothingOfTheirOwnWrites) {
  open().setValue(kStandard, "own", std::int64_t{1});
  defaults_->setValue(kStandard, "precise", Date::clock::now());
  defaults_->setValue(kStandard, "ill-formed", "\xFF");
  defaults_->setValue(kStandard, "no number", std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(runEventLoopUntil([&] { return content().find("own") != std::string::npos; }));
  FileUserDefaults other(directory_);
  other.setValue(kStandard, "theirs", true);
  EXPECT_TRUE(other.synchronize().ok());
  EXPECT_TRUE(runEventLoopUntil([&] { return !changes_.empty(); }));
  EXPECT_THAT(changes_, ElementsAre("theirs"));
  EXPECT_EQ(*defaults_->value(kStandard, "theirs"), DefaultsValue(true));
}

TEST_F(FileUserDefaultsTest, LoseNothingWhenTwoProcessesWriteAtOnce) {
  FileUserDefaults other(directory_);
  open().setValue(kStandard, "own", true);
  defaults_->setValue(kStandard, "both", "own");
  other.setValue(kStandard, "theirs", true);
  other.setValue(kStandard, "both", "theirs");
  EXPECT_TRUE(other.synchronize().ok());
  EXPECT_TRUE(defaults_->synchronize().ok());
  EXPECT_TRUE(runEventLoopUntil([&] { return defaults_->value(kStandard, "theirs") != nullptr; }));
  EXPECT_THAT(changes_, ElementsAre("theirs"));
  EXPECT_TRUE(runEventLoopUntil([&] { return *other.value(kStandard, "both") == DefaultsValue("own"); }));
}

TEST_F(FileUserDefaultsTest, FollowEditsInPlaceAndKeepWhatTheyDoNotUnderstand) {
  edit(R"({"list": [1, 2], "real": 1e3, "huge": 18446744073709551615, "when": {"date": "yesterday"}})");
  open();
  EXPECT_EQ(*defaults_->value(kStandard, "real"), DefaultsValue(1000.0));
  EXPECT_EQ(defaults_->value(kStandard, "when"), nullptr);
  edit(R"({"list": [1, 2], "AbbreviationsEnabled": true})");
  EXPECT_TRUE(
      runEventLoopUntil([&] { return defaults_->value(kStandard, "AbbreviationsEnabled") != nullptr; }));
  EXPECT_EQ(defaults_->value(kStandard, "real"), nullptr);
  defaults_->setValue(kStandard, "own", true);
  EXPECT_TRUE(defaults_->synchronize().ok());
  EXPECT_THAT(content(), HasSubstr("list"));
}

TEST_F(FileUserDefaultsTest, PutADamagedFileAsideWhereverItIsCut) {
  open().setValue(kStandard, "key", "text");
  defaults_.reset();
  const auto whole = content();
  for (std::size_t length = 0; length + 2 < whole.size(); ++length) {
    edit(whole.substr(0, length));
    log_.clear();
    open();
    EXPECT_EQ(defaults_->value(kStandard, "key"), nullptr);
    EXPECT_THAT(log_, ElementsAre(HasSubstr("settings.json")));
    defaults_->setValue(kStandard, "other", true);
    defaults_.reset();
    const auto aside = directory_ / "settings.json.damaged";
    EXPECT_EQ(fs::file_size(aside), length);
    fs::remove(aside);
    EXPECT_THAT(log_, ElementsAre(HasSubstr("settings.json"), HasSubstr("kept as")));
  }
}

TEST_F(FileUserDefaultsTest, KeepTheSettingsWhenTheFileIsDamagedWhileTheyRun) {
  open().setValue(kStandard, "key", "text");
  EXPECT_TRUE(defaults_->synchronize().ok());
  edit("{\"key\": tex");
  EXPECT_TRUE(runEventLoopUntil([&] { return !log_.empty(); }));
  EXPECT_EQ(*defaults_->value(kStandard, "key"), DefaultsValue("text"));
  defaults_->setValue(kStandard, "own", true);
  EXPECT_EQ(*open().value(kStandard, "key"), DefaultsValue("text"));
  EXPECT_THAT(changes_, IsEmpty());
}

TEST_F(FileUserDefaultsTest, HoldTheirValuesWhereNothingCanBeWritten) {
  fs::create_directories(directory_.parent_path());
  std::ofstream(directory_) << "a file in the directory's place";
  open().setValue(kStandard, "key", true);
  EXPECT_FALSE(defaults_->synchronize().ok());
  EXPECT_EQ(*defaults_->value(kStandard, "key"), DefaultsValue(true));
  defaults_.reset();
  EXPECT_THAT(log_, testing::Contains(HasSubstr("could not be written")));
}

}  // namespace
}  // namespace quorlo
