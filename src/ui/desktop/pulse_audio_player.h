#pragma once

#include "platform/audio_player.h"

#include <atomic>

namespace quorlo {

// Sounds through the PulseAudio server of the session (PipeWire answers as one too), from every kind of
// file that libsndfile reads. play() returns when the sound has been played. Any thread; calls may
// overlap: a sound asked for while another one plays is left out.
class PulseAudioPlayer final : public AudioPlayer {
 public:
  Result<Seconds> duration(const std::filesystem::path& file) override;
  Status play(const std::filesystem::path& file) override;

 private:
  std::atomic_flag playing_;
};

}  // namespace quorlo
