#include "ui/desktop/pulse_audio_player.h"

#include <pulse/error.h>
#include <pulse/simple.h>
#include <sndfile.hh>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace quorlo {
namespace {

struct StreamCloser {
  void operator()(pa_simple* stream) const { pa_simple_free(stream); }
};
using Stream = std::unique_ptr<pa_simple, StreamCloser>;

Result<SndfileHandle> open(const std::filesystem::path& file) {
  SndfileHandle sound(file.c_str());
  if (sound.error() != SF_ERR_NO_ERROR) return Error{file.string() + ": " + sound.strError()};
  if (sound.samplerate() <= 0 || sound.channels() <= 0) return Error{file.string() + " holds no sound."};
  return sound;
}

// What the server buffers ahead; its default of 2 s would delay the sound.
constexpr pa_usec_t kLatencyUs = 50'000;

// Null when no server answers.
Stream connect(const pa_sample_spec& format) {
  constexpr auto kServersChoice = static_cast<std::uint32_t>(-1);
  const auto ahead = static_cast<std::uint32_t>(pa_usec_to_bytes(kLatencyUs, &format));
  const pa_buffer_attr buffer{kServersChoice, ahead, kServersChoice, kServersChoice, kServersChoice};
  return Stream(pa_simple_new(nullptr, "Quorlo", PA_STREAM_PLAYBACK, nullptr, "Expansion", &format, nullptr,
                              &buffer, nullptr));
}

Status playOn(pa_simple& stream, SndfileHandle& sound) {
  std::array<std::int16_t, 4096> samples;
  const auto whole = static_cast<sf_count_t>(samples.size()) / sound.channels() * sound.channels();
  int failure = 0;
  while (const auto count = sound.read(samples.data(), whole)) {
    const auto bytes = static_cast<std::size_t>(count) * sizeof(std::int16_t);
    if (pa_simple_write(&stream, samples.data(), bytes, &failure) < 0) return Error{pa_strerror(failure)};
  }
  if (pa_simple_drain(&stream, &failure) < 0) return Error{pa_strerror(failure)};
  return {};
}

}  // namespace

Result<Seconds> PulseAudioPlayer::duration(const std::filesystem::path& file) {
  const auto sound = open(file);
  if (!sound) return sound.error();
  return Seconds(static_cast<double>(sound.value().frames()) / sound.value().samplerate());
}

Status PulseAudioPlayer::play(const std::filesystem::path& file) {
  auto sound = open(file);
  if (!sound) return sound.error();
  const pa_sample_spec format{PA_SAMPLE_S16NE, static_cast<std::uint32_t>(sound.value().samplerate()),
                              static_cast<std::uint8_t>(sound.value().channels())};
  if (sound.value().channels() > static_cast<int>(PA_CHANNELS_MAX) || !pa_sample_spec_valid(&format)) {
    return Error{file.string() + " has a sample rate or a number of channels that cannot be played."};
  }
  if (playing_.test_and_set()) return {};
  Status outcome;
  if (const auto stream = connect(format)) outcome = playOn(*stream, sound.value());
  playing_.clear();
  return outcome;
}

}  // namespace quorlo
