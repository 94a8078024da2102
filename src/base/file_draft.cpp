#include "base/file_draft.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;  // as many as the system follows

// The place that a path leads to, where nothing may be yet; the path itself when its links run in a circle.
fs::path behindLinks(const fs::path& path) {
  auto place = path;
  std::error_code failure;
  for (int i = 0; i < kMostLinks && fs::is_symlink(fs::symlink_status(place, failure)); ++i) {
    place = place.parent_path() / fs::read_symlink(place, failure);
  }
  return place;
}

std::string reasonAndRemedy(int reason) {
  switch (reason) {
    case ENOSPC:
    case EDQUOT:
      return "the disk is full. Free some space or choose another place.";
    case EROFS:
      return "it is on a disk that is read-only. Choose another place.";
    case EACCES:
    case EPERM:
      return "you may not write there (" + std::string(std::strerror(reason)) +
             "). Choose another place or change the permissions.";
    case ENOENT:
    case ENOTDIR:
      return "there is no such folder. Make it or choose another place.";
    case EISDIR:
      return "it is a folder. Name a file in it.";
    default:
      return std::string(std::strerror(reason)) + ".";
  }
}

// So that the new name is on the disk too; without it the former content is, which is whole as well.
void synchroniseFolder(const fs::path& folder) {
  const int descriptor = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

}  // namespace

FileDraft::FileDraft(fs::path path, mode_t mode) : path_(std::move(path)), mode_(mode) {}

FileDraft::~FileDraft() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!draft_.empty()) ::unlink(draft_.c_str());
}

Status FileDraft::open() {
  place_ = behindLinks(path_);
  struct stat present {};
  if (::stat(path_.c_str(), &present) == 0) return openExisting(present.st_mode);
  return errno == ENOENT ? openBeside(mode_) : failure(errno);
}

Status FileDraft::openExisting(mode_t type) {
  if (S_ISDIR(type)) return failure(EISDIR);
  if (!S_ISREG(type)) {
    descriptor_ = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC);
    return descriptor_ < 0 ? Status(failure(errno)) : Status();
  }
  // One that its owner has protected could be replaced all the same.
  if (::access(path_.c_str(), W_OK) != 0) return failure(errno);
  mode_ = type & 07777;
  keepsMode_ = true;
  return openBeside(S_IRUSR | S_IWUSR);
}

// The name does not grow with the file's own, which may be as long as names can be.
Status FileDraft::openBeside(mode_t mode) {
  const auto stem = ".quorlo-" + std::to_string(::getpid()) + "-";
  for (int number = 0;; ++number) {
    auto name = place_.parent_path() / (stem + std::to_string(number) + ".new");
    descriptor_ = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor_ < 0 && errno == EEXIST) continue;
    if (descriptor_ < 0) return failure(errno);
    draft_ = std::move(name);
    return {};
  }
}

Status FileDraft::write(std::string_view content) {
  const int reason = writeFully(descriptor_, content);
  return reason == 0 ? Status() : Status(failure(reason));
}

Status FileDraft::takePlace() {
  const bool isBeside = !draft_.empty();
  if (isBeside && ::fsync(descriptor_) != 0) return failure(errno);
  if (keepsMode_ && ::fchmod(descriptor_, mode_) != 0) return failure(errno);
  if (::close(std::exchange(descriptor_, -1)) != 0) return failure(errno);
  if (!isBeside) return {};
  if (::rename(draft_.c_str(), place_.c_str()) != 0) return failure(errno);
  draft_.clear();
  synchroniseFolder(place_.parent_path());
  return {};
}

Error FileDraft::failure(int reason) const {
  return {path_.string() + " cannot be written: " + reasonAndRemedy(reason)};
}

int writeFully(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const auto written = ::write(descriptor, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

}  // namespace quorlo
