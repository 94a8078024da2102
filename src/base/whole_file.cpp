#include "base/whole_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

std::error_code systemError() {
  return {errno, std::generic_category()};
}

// The place of the file itself; a link that leads nowhere is replaced.
fs::path withoutLinks(const fs::path& path) {
  std::error_code failure;
  auto real = fs::canonical(path, failure);
  return failure ? path : real;
}

// A new file beside `path`, under a name that no other has.
int openDraft(const fs::path& path, mode_t mode, fs::path& draft) {
  const auto stem = path.string() + "." + std::to_string(::getpid());
  for (int number = 0;; ++number) {
    draft = stem + "-" + std::to_string(number) + ".new";
    const int descriptor = ::open(draft.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor >= 0 || errno != EEXIST) return descriptor;
  }
}

std::error_code writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const auto written = ::write(descriptor, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return systemError();
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return ::fsync(descriptor) == 0 ? std::error_code() : systemError();
}

// So that the new name is on the disk too; without it the former content is, which is whole as well.
void synchroniseFolder(const fs::path& folder) {
  const int descriptor = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

}  // namespace

Status writeWholeFile(const fs::path& path, std::string_view content, mode_t mode) {
  const auto target = withoutLinks(path);
  fs::path draft;
  const int descriptor = openDraft(target, mode, draft);
  if (descriptor < 0) return Error{path.string() + " cannot be written: " + systemError().message()};
  auto failure = writeAll(descriptor, content);
  if (::close(descriptor) != 0 && !failure) failure = systemError();
  if (!failure) fs::rename(draft, target, failure);
  if (failure) {
    ::unlink(draft.c_str());
    return Error{path.string() + " cannot be written: " + failure.message()};
  }
  synchroniseFolder(target.parent_path());
  return {};
}

}  // namespace quorlo
