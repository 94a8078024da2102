#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace quorlo {

// The number behind `name` in a status file of /proc.
inline std::int64_t statusValue(const std::filesystem::path& file, const std::string& name) {
  std::ifstream in(file);
  std::string word;
  while (in >> word) {
    std::int64_t value = 0;
    if (word == name + ":" && in >> value) return value;
  }
  throw std::runtime_error(file.string() + " has no " + name);
}

}  // namespace quorlo
