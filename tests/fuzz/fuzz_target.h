#pragma once

#include "base/log.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

// What a fuzzer, or the replay, calls with each input; returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace quorlo {

// Stops the fuzzer with the input that led here.
inline void require(bool holds) {
  if (!holds) std::abort();
}

// The input as a text: ASCII, and lone surrogates for the other bytes. Also keeps the log quiet, since
// damaged markup is logged all the time.
inline std::u16string fuzzText(const std::uint8_t* data, std::size_t size) {
  static const auto quiet = redirectLog([](LogLevel, std::string_view) {});
  std::u16string text(data, data + size);
  for (auto& character : text) {
    if (character >= 0x80) character = static_cast<char16_t>(character + 0xD780);
  }
  return text;
}

// The lines of a text; at least `count`.
inline std::vector<std::u16string> fuzzLines(const std::u16string& text, std::size_t count) {
  std::vector<std::u16string> lines(1);
  for (const auto character : text) {
    if (character == u'\n') lines.emplace_back();
    if (character != u'\n') lines.back() += character;
  }
  if (lines.size() < count) lines.resize(count);
  return lines;
}

}  // namespace quorlo
