#include "app/settings/sound_manager.h"

#include "app/settings/settings_controller.h"
#include "base/fatal.h"
#include "base/log.h"
#include "platform/audio_player.h"
#include "platform/background_queue.h"
#include "platform/environment/environment.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <system_error>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

constexpr Seconds kLongestSound{4.0};

// In the order in which a built-in sound is looked for.
constexpr std::array<std::string_view, 5> kAudioExtensions{".wav", ".flac", ".ogg", ".aiff", ".mp3"};

}  // namespace

SoundManager::SoundManager(SettingsController& settings, Environment& environment, AudioPlayer& player,
                           BackgroundQueue& background)
    : settings_(settings), environment_(environment), player_(player), background_(background) {
  soundChanges_ = settings_.observe([this](Setting setting) {
    if (setting == Setting::snippetExpansionSound || setting == Setting::customSnippetSound) {
      defaultSoundURL_.reset();
    }
  });
}

void SoundManager::play() {
  background_.run([&player = player_, sound = defaultSoundURL()] {
    if (const auto played = player.play(sound); !played) {
      logWarning("WARNING: The expansion sound could not be played. " + played.error().message);
    }
  });
}

const fs::path& SoundManager::defaultSoundURL() {
  if (!defaultSoundURL_) defaultSoundURL_ = resolve();
  return *defaultSoundURL_;
}

std::vector<std::string> SoundManager::customSounds() {
  std::vector<std::string> names;
  std::error_code failure;
  for (const auto& file : fs::directory_iterator(customSoundsFolder(), failure)) {
    if (file.is_regular_file(failure)) names.push_back(file.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

SoundManager::Addition SoundManager::addCustomSound(const fs::path& chosen) {
  const auto duration = player_.duration(chosen);
  if (!duration) {
    logError("ERROR: #jzi<38rr " + duration.error().message);
    return Addition::noAudio;
  }
  if (duration.value() > kLongestSound) {
    logWarning("WARNING: #rheoue - Audio file is longer than 4 seconds");
    return Addition::tooLong;
  }
  const auto destination = customSoundsFolder() / chosen.filename();
  std::error_code failure;
  // The sound that is already in place must not be removed before it is copied onto itself.
  if (fs::equivalent(chosen, destination, failure)) return Addition::added;
  fs::remove(destination, failure);
  if (failure) {
    fatal("ERROR: The custom sound " + destination.string() + " cannot be replaced: " + failure.message());
  }
  fs::copy_file(chosen, destination, failure);
  if (failure) {
    fatal("ERROR: The sound " + chosen.string() + " cannot be copied to " + destination.string() + ": " +
          failure.message());
  }
  return Addition::added;
}

void SoundManager::removeCustomSound(const std::string& fileName) {
  std::error_code failure;
  fs::remove(customSoundsFolder() / fs::path(fileName).filename(), failure);
  if (failure) logWarning("WARNING: The custom sound could not be removed. " + failure.message());
  if (settings_.snippetExpansionSound() != SnippetExpansionSound::custom) return;
  if (settings_.customSnippetSound() == fileName)
    settings_.setSnippetExpansionSound(SnippetExpansionSound::magnet);
}

fs::path SoundManager::customSoundsFolder() {
  auto folder = environment_.dataDirectory() / kCustomSoundsFolder;
  std::error_code failure;
  fs::create_directories(folder, failure);
  if (failure) {
    fatal("ERROR: The folder of custom sounds " + folder.string() + " cannot be made: " + failure.message());
  }
  return folder;
}

fs::path SoundManager::resolve() {
  const auto sound = settings_.snippetExpansionSound();
  if (sound == SnippetExpansionSound::custom)
    return customSoundsFolder() / fs::path(settings_.customSnippetSound()).filename();
  return builtInSound(rawValue(sound));
}

fs::path SoundManager::builtInSound(std::string_view name) const {
  const auto folder = environment_.resourcesDirectory() / "sounds";
  for (const auto extension : kAudioExtensions) {
    auto file = folder / (std::string(name) + std::string(extension));
    if (std::error_code failure; fs::is_regular_file(file, failure)) return file;
  }
  fatal("ERROR: The built-in sound " + std::string(name) + " is missing from " + folder.string() +
        ". Please install Quorlo again.");
}

}  // namespace quorlo
