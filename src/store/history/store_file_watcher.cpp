#include "store/history/store_file_watcher.h"

#include "base/log.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

// What comes in during this time is reported together: one save makes several writes, an import
// thousands. The user does not notice the delay.
constexpr int kGatherMilliseconds = 40;

constexpr std::uint32_t kEvents = IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                                  IN_MOVE_SELF | IN_DELETE_SELF | IN_ONLYDIR;

Error watchError(const std::filesystem::path& storeFile, int code) {
  std::string advice = std::strerror(code);
  if (code == EMFILE || code == ENOSPC) {
    advice += ". Raise fs.inotify.max_user_instances and fs.inotify.max_user_watches";
  }
  return {"Changes that other programs make to \"" + storeFile.string() + "\" cannot be watched: " + advice +
          "."};
}

}  // namespace

StoreFileWatcher::Descriptor::Descriptor(Descriptor&& other) noexcept
    : number(std::exchange(other.number, -1)) {}

StoreFileWatcher::Descriptor::~Descriptor() {
  if (number >= 0) close(number);
}

Result<std::unique_ptr<StoreFileWatcher>> StoreFileWatcher::watch(const std::filesystem::path& storeFile,
                                                                  std::function<void()> changed) {
  // SQLite puts the log beside the file that a symbolic link leads to.
  std::error_code failure;
  const auto file = std::filesystem::weakly_canonical(storeFile, failure);
  if (failure) return watchError(storeFile, failure.value());
  Descriptor notifications(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  if (notifications.number < 0) return watchError(storeFile, errno);
  if (inotify_add_watch(notifications.number, file.parent_path().c_str(), kEvents) < 0) {
    return watchError(storeFile, errno);
  }
  Descriptor end(eventfd(0, EFD_CLOEXEC));
  if (end.number < 0) return watchError(storeFile, errno);
  return std::unique_ptr<StoreFileWatcher>(
      new StoreFileWatcher(file, std::move(changed), std::move(notifications), std::move(end)));
}

StoreFileWatcher::StoreFileWatcher(const std::filesystem::path& storeFile, std::function<void()> changed,
                                   Descriptor notifications, Descriptor end)
    : storeFile_(storeFile),
      fileName_(storeFile.filename().string()),
      changed_(std::move(changed)),
      notifications_(std::move(notifications)),
      end_(std::move(end)),
      thread_([this] { work(); }) {}

StoreFileWatcher::~StoreFileWatcher() {
  eventfd_write(end_.number, 1);
  thread_.join();
}

void StoreFileWatcher::work() {
  std::array<pollfd, 2> sources{pollfd{notifications_.number, POLLIN, 0}, pollfd{end_.number, POLLIN, 0}};
  for (;;) {
    if (poll(sources.data(), sources.size(), -1) < 0) continue;  // a signal
    if (sources[1].revents != 0) return;
    if (!readNotifications()) continue;
    if (endsWithin(kGatherMilliseconds)) return;
    readNotifications();
    changed_();
  }
}

// True when one of them is about the store.
bool StoreFileWatcher::readNotifications() {
  bool isAboutStore = false;
  alignas(inotify_event) std::array<char, 16 * 1024> buffer;
  for (;;) {
    const auto length = read(notifications_.number, buffer.data(), buffer.size());
    if (length <= 0) return isAboutStore;
    for (std::size_t at = 0; at < static_cast<std::size_t>(length);) {
      const auto& event = *reinterpret_cast<const inotify_event*>(buffer.data() + at);
      at += sizeof event + event.len;
      if ((event.mask & (IN_MOVE_SELF | IN_DELETE_SELF)) != 0) {
        logWarning("WARNING: #hW4tch; The folder of the library \"" + storeFile_.string() +
                   "\" was moved or deleted. Put it back and start Quorlo anew.");
      }
      const std::string_view name(event.len == 0 ? "" : buffer.data() + at - event.len);
      const bool isIndex = name.ends_with("-shm");
      isAboutStore |= (name.starts_with(fileName_) && !isIndex) || (event.mask & IN_Q_OVERFLOW) != 0;
    }
  }
}

bool StoreFileWatcher::endsWithin(int milliseconds) {
  pollfd source{end_.number, POLLIN, 0};
  return poll(&source, 1, milliseconds) > 0;
}

}  // namespace quorlo
