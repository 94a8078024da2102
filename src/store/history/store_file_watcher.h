#pragma once

#include "base/result.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace quorlo {

// Notices that a process, this one included, has written to the store's file or its write-ahead log,
// without polling: the kernel reports it. The watch is on the folder, so the files may come and go. A
// write is reported before its commit can be read: whoever is told must take the write lock to see it.
//
// The callback runs on the watcher's thread, once for what happens within a few hundredths of a second;
// it must not destroy the watcher. Destruction waits for it.
class StoreFileWatcher {
 public:
  // Fails when the folder is missing or the system has no watches left.
  static Result<std::unique_ptr<StoreFileWatcher>> watch(const std::filesystem::path& storeFile,
                                                         std::function<void()> changed);
  StoreFileWatcher(const StoreFileWatcher&) = delete;
  StoreFileWatcher& operator=(const StoreFileWatcher&) = delete;
  ~StoreFileWatcher();

 private:
  // Closed at the end; -1 when there is none.
  struct Descriptor {
    explicit Descriptor(int value) : number(value) {}
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor();
    int number;
  };

  StoreFileWatcher(const std::filesystem::path& storeFile, std::function<void()> changed,
                   Descriptor notifications, Descriptor end);
  void work();
  bool readNotifications();
  bool endsWithin(int milliseconds);

  const std::filesystem::path storeFile_;
  const std::string fileName_;
  const std::function<void()> changed_;
  const Descriptor notifications_;
  const Descriptor end_;
  std::thread thread_;
};

}  // namespace quorlo
