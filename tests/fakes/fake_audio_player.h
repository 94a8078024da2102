#pragma once

#include "platform/audio_player.h"

#include <map>
#include <vector>

namespace quorlo {

// Knows how long the sounds are that the test made.
class FakeAudioPlayer : public AudioPlayer {
 public:
  Result<Seconds> duration(const std::filesystem::path& file) override {
    const auto found = durations.find(file);
    if (found == durations.end()) return Error{file.string() + " is no sound"};
    return found->second;
  }

  Status play(const std::filesystem::path& file) override {
    if (!durations.contains(file)) return Error{file.string() + " is no sound"};
    played.push_back(file);
    return {};
  }

  std::map<std::filesystem::path, Seconds> durations;
  std::vector<std::filesystem::path> played;
};

}  // namespace quorlo
