#pragma once

#include <filesystem>
#include <string>

namespace quorlo {

// A fresh directory below the system's temporary one; removed with everything in it on destruction.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

// The whole file; empty when it cannot be read.
std::string readFile(const std::filesystem::path& path);
// Throws std::runtime_error.
void writeFile(const std::filesystem::path& path, const std::string& text);

}  // namespace quorlo
