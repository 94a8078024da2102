#include "virtual_desktop/temp_dir.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace quorlo {

TempDir::TempDir() {
  std::string pattern = std::filesystem::temp_directory_path() / "quorlo-XXXXXX";
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
