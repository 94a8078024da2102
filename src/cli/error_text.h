#pragma once

#include <string>

namespace quorlo {

// Without the head by which a line is found in the log ("###place: event: "), which says nothing to a user.
inline std::string inWords(const std::string& line) {
  if (!line.starts_with("###")) return line;
  const auto place = line.find(": ");
  const auto event = place == std::string::npos ? place : line.find(": ", place + 2);
  return event == std::string::npos ? line : line.substr(event + 2);
}

}  // namespace quorlo
