#include "virtual_desktop/temp_dir.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>

namespace quorlo {

namespace {

// In memory where the system has such a place: a disk that is busy for seconds would hold up the programs on
// the desktop, and with them what is tried there.
std::filesystem::path parent() {
  const std::filesystem::path memory = "/dev/shm";
  constexpr std::uintmax_t kRoom = std::uintmax_t{1} << 30;
  std::error_code failed;
  const auto space = std::filesystem::space(memory, failed);
  return !failed && space.available >= kRoom ? memory : std::filesystem::temp_directory_path();
}

}  // namespace

TempDir::TempDir() {
  std::string pattern = parent() / "quorlo-XXXXXX";
  if (!mkdtemp(pattern.data())) throw std::runtime_error("Cannot create a directory like " + pattern);
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;  // a program that is just ending may still write; nothing depends on it
  std::filesystem::remove_all(path_, ignored);
}

std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  if (!file) throw std::runtime_error("Cannot write " + path.string());
}

}  // namespace quorlo
