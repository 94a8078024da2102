#pragma once

#include "base/subscription.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

class AudioPlayer;
class BackgroundQueue;
class Environment;
class SettingsController;

// Of the user's own sounds, in the user's data folder.
inline constexpr std::string_view kCustomSoundsFolder = "Custom Sounds";

// The sound of an expansion, and the folder of the user's own sounds. One instance; main thread.
class SoundManager {
 public:
  // The references must outlive the manager; the player must outlive the tasks of the queue too.
  SoundManager(SettingsController& settings, Environment& environment, AudioPlayer& player,
               BackgroundQueue& background);
  SoundManager(const SoundManager&) = delete;
  SoundManager& operator=(const SoundManager&) = delete;

  static SoundManager& shared();

  // Starts the current sound, whether or not the user wants sounds; returns at once.
  void play();

  // The file of the current sound. One of the user's own may be missing by now.
  const std::filesystem::path& defaultSoundURL();

  // The file names in the custom-sounds folder, in order.
  std::vector<std::string> customSounds();

  // Copies a sound that the user chose into the custom-sounds folder, where it replaces one of the same
  // name. A file that is no audio or longer than 4 s is logged and refused.
  enum class Addition { added, noAudio, tooLong };
  Addition addCustomSound(const std::filesystem::path& chosen);

  // Where it was the sound of expansions, the default sound takes its place.
  void removeCustomSound(const std::string& fileName);

  // Made when first needed.
  std::filesystem::path customSoundsFolder();

 private:
  std::filesystem::path resolve();
  std::filesystem::path builtInSound(std::string_view name) const;

  SettingsController& settings_;
  Environment& environment_;
  AudioPlayer& player_;
  BackgroundQueue& background_;
  std::optional<std::filesystem::path> defaultSoundURL_;  // absent until needed and after each change
  Subscription soundChanges_;
};

}  // namespace quorlo
