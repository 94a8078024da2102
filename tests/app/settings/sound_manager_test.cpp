#include "app/settings/sound_manager.h"
#include "app/settings/settings_controller.h"
#include "base/log.h"
#include "fakes/fake_audio_player.h"
#include "fakes/fake_background_queue.h"
#include "fakes/fake_environment.h"
#include "fakes/fake_main_queue.h"
#include "fakes/fake_user_defaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class SoundManagerTest : public testing::Test {
 protected:
  SoundManagerTest() {
    fs::create_directories(chosen_);
    environment_.data = folder_ / "data";
    environment_.resources = QUORLO_RESOURCES;
  }
  ~SoundManagerTest() override { fs::remove_all(folder_); }

  fs::path choose(const std::string& content, Seconds duration) {
    auto file = chosen_ / "gong.wav";
    std::ofstream(file) << content;
    player_.durations[file] = duration;
    return file;
  }

  std::string customGong() const {
    std::ifstream content(environment_.data / "Custom Sounds" / "gong.wav");
    return std::string(std::istreambuf_iterator<char>(content), {});
  }

  fs::path folder_ =
      fs::path(testing::TempDir()) / testing::UnitTest::GetInstance()->current_test_info()->name();
  fs::path chosen_ = folder_ / "chosen";
  FakeUserDefaults defaults_;
  FakeMainQueue queue_;
  FakeEnvironment environment_;
  FakeAudioPlayer player_;
  FakeBackgroundQueue background_;
  SettingsController settings_{defaults_, queue_, [] { return Date(); }, [] { return std::nullopt; }};
  SoundManager sounds_{settings_, environment_, player_, background_};
  std::vector<std::string> log_;
  Subscription logged_ = redirectLog([this](LogLevel, std::string_view line) { log_.emplace_back(line); });
};

TEST_F(SoundManagerTest, HasAFileForEveryBuiltInSound) {
  for (const auto sound : kSnippetExpansionSounds) {
    if (sound == SnippetExpansionSound::custom) continue;
    settings_.setSnippetExpansionSound(sound);
    EXPECT_EQ(sounds_.defaultSoundURL().stem(), rawValue(sound));
    EXPECT_TRUE(fs::is_regular_file(sounds_.defaultSoundURL()));
  }
}

TEST_F(SoundManagerTest, FollowsTheSettingsWhoeverChangesThem) {
  EXPECT_EQ(sounds_.defaultSoundURL().stem(), "Magnet");
  defaults_.changeFromElsewhere(DefaultsDomain::standard, "SnippetSound", "Custom");
  settings_.setCustomSnippetSound("../../.profile");
  EXPECT_EQ(sounds_.defaultSoundURL(), environment_.data / "Custom Sounds" / ".profile");
}

TEST_F(SoundManagerTest, PlaysInTheBackgroundAndOutlivesAMissingFile) {
  const auto file = sounds_.defaultSoundURL();
  player_.durations[file] = Seconds(0.3);
  sounds_.play();
  EXPECT_THAT(player_.played, IsEmpty());
  background_.runAll();
  EXPECT_THAT(player_.played, ElementsAre(file));
  settings_.setSnippetExpansionSound(SnippetExpansionSound::custom);
  sounds_.play();
  background_.runAll();
  EXPECT_THAT(log_, ElementsAre(testing::StartsWith("WARNING: ")));
}

TEST_F(SoundManagerTest, TakesSoundsOfUpToFourSecondsAndReplacesOneOfTheSameName) {
  using Addition = SoundManager::Addition;
  EXPECT_EQ(sounds_.addCustomSound(choose("first", Seconds(4.0))), Addition::added);
  EXPECT_EQ(customGong(), "first");
  sounds_.addCustomSound(choose("second", Seconds(3)));
  EXPECT_EQ(customGong(), "second");
  EXPECT_THAT(log_, IsEmpty());
  const auto kept = sounds_.customSoundsFolder() / "gong.wav";
  player_.durations[kept] = Seconds(3);
  sounds_.addCustomSound(kept);
  EXPECT_EQ(sounds_.addCustomSound(choose("third", Seconds(4.5))), Addition::tooLong);
  EXPECT_EQ(sounds_.addCustomSound(chosen_ / "missing.wav"), Addition::noAudio);
  EXPECT_EQ(customGong(), "second");
  EXPECT_THAT(log_, ElementsAre("WARNING: #rheoue - Audio file is longer than 4 seconds",
                                testing::StartsWith("ERROR: #jzi<38rr ")));
}

TEST_F(SoundManagerTest, TheDefaultSoundTakesThePlaceOfARemovedOne) {
  sounds_.addCustomSound(choose("gong", Seconds(1)));
  EXPECT_THAT(sounds_.customSounds(), ElementsAre("gong.wav"));
  settings_.setCustomSnippetSound("gong.wav");
  settings_.setSnippetExpansionSound(SnippetExpansionSound::custom);
  sounds_.removeCustomSound("gong.wav");
  EXPECT_THAT(sounds_.customSounds(), IsEmpty());
  EXPECT_EQ(settings_.snippetExpansionSound(), SnippetExpansionSound::magnet);
}

TEST_F(SoundManagerTest, CannotGoOnWithoutItsFiles) {
  logged_.reset();
  environment_.resources = folder_ / "nowhere";
  EXPECT_DEATH(sounds_.defaultSoundURL(), "The built-in sound Magnet is missing");
  std::ofstream(environment_.data) << "a file in the folder's place";
  EXPECT_DEATH(sounds_.customSoundsFolder(), "cannot be made");
}

}  // namespace
}  // namespace quorlo
