#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace quorlo {

// A new empty directory that goes with everything in it.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    auto name = (std::filesystem::temp_directory_path() / "quorlo-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) std::abort();
    path_ = name;
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

}  // namespace quorlo
