#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace quorlo {

// A new empty directory that goes with everything in it.
class TemporaryDirectory {
 public:
  TemporaryDirectory() : TemporaryDirectory(std::filesystem::temp_directory_path()) {}
  explicit TemporaryDirectory(const std::filesystem::path& parent) {
    auto name = (parent / "quorlo-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) std::abort();
    path_ = name;
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  // In memory where the system has such a place, for tests that would wait for the disk at every turn.
  static std::filesystem::path quickParent() {
    const std::filesystem::path memory = "/dev/shm";
    std::error_code ignored;
    return std::filesystem::is_directory(memory, ignored) ? memory : std::filesystem::temp_directory_path();
  }

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

}  // namespace quorlo
