#include "import/file_bytes.h"

#include "import/work_progress.h"
#include "store/localized_format.h"
#include "text/utf.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace quorlo {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;

class OpenFile {
 public:
  // Without waiting for the other end of a pipe.
  explicit OpenFile(const std::filesystem::path& file)
      : descriptor_(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  bool isOpen() const { return descriptor_ >= 0; }
  bool status(struct stat& status) const { return ::fstat(descriptor_, &status) == 0; }
  ::ssize_t read(char* bytes, std::size_t size) const {
    ::ssize_t count = 0;
    do {
      count = ::read(descriptor_, bytes, size);
    } while (count < 0 && errno == EINTR);
    return count;
  }

 private:
  int descriptor_;
};

bool isSameContent(const struct stat& a, const struct stat& b) {
  const auto isSame = [](const timespec& x, const timespec& y) {
    return x.tv_sec == y.tv_sec && x.tv_nsec == y.tv_nsec;
  };
  return a.st_size == b.st_size && isSame(a.st_mtim, b.st_mtim) && isSame(a.st_ctim, b.st_ctim);
}

Error systemError(const std::filesystem::path& file) {
  return cannotRead(file, toUtf16(std::strerror(errno)));
}

}  // namespace

Error cannotRead(const std::filesystem::path& file, std::u16string_view reason) {
  return {toUtf8(localizedFormat(u"%@ cannot be read: %@.", toUtf16(file.string()), reason))};
}

Error importWasCancelled() {
  return {toUtf8(localized(u"The import was cancelled."))};
}

Result<std::string> readFileBytes(const std::filesystem::path& file, WorkProgress& progress) {
  const OpenFile open(file);
  struct stat before {};
  if (!open.isOpen() || !open.status(before)) return systemError(file);
  if (S_ISDIR(before.st_mode)) return cannotRead(file, localized(u"it is a folder"));
  if (!S_ISREG(before.st_mode)) return cannotRead(file, localized(u"it is no file, but a device or a pipe"));
  const auto size = static_cast<std::size_t>(before.st_size);
  if (size > kLargestImportedFile) {
    return cannotRead(file, localized(u"it is larger than 256 MiB; divide it"));
  }

  std::string bytes(size, '\0');
  std::size_t position = 0;
  while (position < size) {
    if (progress.isCancelled()) return importWasCancelled();
    const auto count = open.read(bytes.data() + position, std::min(kBlock, size - position));
    if (count < 0) return systemError(file);
    if (count == 0) break;  // it was cut
    position += static_cast<std::size_t>(count);
    progress.setFraction(static_cast<double>(position) / static_cast<double>(size));
  }
  struct stat after {};
  if (!open.status(after)) return systemError(file);
  if (position < size || !isSameContent(before, after)) {
    return cannotRead(file, localized(u"another program is changing it; try again when it is done"));
  }
  return bytes;
}

}  // namespace quorlo
