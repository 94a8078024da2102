#pragma once

#include "base/result.h"
#include "platform/main_queue.h"

#include <filesystem>

namespace quorlo {

// Short sounds. Any thread; calls may overlap.
class AudioPlayer {
 public:
  virtual ~AudioPlayer() = default;

  // How long the sound is; an error when the file is missing or no readable audio.
  virtual Result<Seconds> duration(const std::filesystem::path& file) = 0;

  // Plays the sound and returns at once or when it has been played, as the adapter does it; callers use
  // a thread that may wait. Silent, without error, where the machine has no sound.
  virtual Status play(const std::filesystem::path& file) = 0;
};

}  // namespace quorlo
