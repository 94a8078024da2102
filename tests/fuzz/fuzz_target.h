#pragma once

#include "base/log.h"
#include "text/utf.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

// What a fuzzer calls with each input; returns 0. One target each for libFuzzer and for the replay.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace quorlo {

// Stops the fuzzer with the input that led here.
inline void require(bool holds) {
  if (!holds) std::abort();
}

// Damaged markup is logged all the time.
inline void keepLogQuiet() {
  static const auto redirection = redirectLog([](LogLevel, std::string_view) {});
}

// The input's lines; at least one.
inline std::vector<std::u16string> fuzzLines(const std::uint8_t* data, std::size_t size) {
  const std::u16string text = toUtf16(std::string_view(reinterpret_cast<const char*>(data), size));
  std::vector<std::u16string> lines(1);
  for (const auto character : text) {
    if (character == u'\n') {
      lines.emplace_back();
    } else {
      lines.back() += character;
    }
  }
  return lines;
}

}  // namespace quorlo
