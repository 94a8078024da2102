#include "store/sqlite/file/store_files.h"

#include "base/log.h"
#include "store/sqlite/file/log_mark.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string>
#include <system_error>
#include <vector>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

constexpr auto kPrivateFile = fs::perms::owner_read | fs::perms::owner_write;

Error fileError(const fs::path& file, const std::error_code& reason) {
  return {"\"" + file.string() + "\": " + reason.message()};
}

std::error_code systemError() {
  return {errno, std::generic_category()};
}

Status synchronise(const fs::path& file) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return fileError(file, systemError());
  const auto failure = ::fsync(descriptor) == 0 ? std::error_code() : systemError();
  ::close(descriptor);
  return failure ? Status(fileError(file, failure)) : Status();
}

// With the time of its last change, by which a copy is known again.
Status copyFile(const fs::path& from, const fs::path& to) {
  std::error_code failure;
  fs::copy_file(from, to, fs::copy_options::overwrite_existing, failure);
  if (failure) return fileError(from.string() + "\" to \"" + to.string(), failure);
  fs::permissions(to, kPrivateFile, failure);
  if (failure) return fileError(to, failure);
  const auto time = fs::last_write_time(from, failure);
  if (!failure) fs::last_write_time(to, time, failure);
  if (failure) return fileError(to, failure);
  return synchronise(to);
}

std::vector<fs::path> presentFiles(const fs::path& store) {
  std::vector<fs::path> files;
  for (const auto suffix : kStoreSideFileSuffixes) {
    if (auto side = storeSideFile(store, suffix); !isMissing(side)) files.push_back(std::move(side));
  }
  files.push_back(store);
  return files;
}

// The same file of another store.
fs::path renamed(const fs::path& file, const fs::path& store, const fs::path& otherStore) {
  return otherStore.string() + file.string().substr(store.string().size());
}

bool isSameVersion(const fs::path& file, const fs::path& copy) {
  std::error_code failure;
  return fs::file_size(file, failure) == fs::file_size(copy, failure) && !failure &&
         fs::last_write_time(file, failure) == fs::last_write_time(copy, failure) && !failure;
}

}  // namespace

fs::path storeSideFile(const fs::path& store, std::string_view suffix) {
  auto file = store;
  file += suffix;
  return file;
}

Status makePrivateDirectory(const fs::path& directory) {
  std::error_code failure;
  if (fs::is_directory(directory, failure)) return {};
  if (directory.has_parent_path() && directory.parent_path() != directory) {
    if (auto status = makePrivateDirectory(directory.parent_path()); !status) return status;
  }
  if (::mkdir(directory.c_str(), S_IRWXU) == 0) return {};
  const auto reason = systemError();
  if (fs::is_directory(directory, failure)) return {};  // another process was quicker
  return fileError(directory, reason);
}

void makeStorePrivate(const fs::path& store) {
  constexpr auto kOthers = fs::perms::group_all | fs::perms::others_all;
  const auto exclude = [](const fs::path& file) {
    std::error_code failure;
    const auto status = fs::status(file, failure);
    if (status.type() == fs::file_type::not_found) return;
    const auto rights = status.permissions();
    if (!failure && (rights & kOthers) != fs::perms::none) {
      fs::permissions(file, kOthers, fs::perm_options::remove, failure);
    }
    if (failure) logWarning("WARNING: Others may read the library; " + fileError(file, failure).message);
  };
  exclude(store.parent_path());
  for (const auto& file : presentFiles(store)) exclude(file);
}

bool isMissing(const fs::path& file) {
  std::error_code failure;
  return fs::symlink_status(file, failure).type() == fs::file_type::not_found;
}

fs::path nameBeside(const fs::path& store, std::string_view what, Date now) {
  const auto moment = fmt::gmtime(std::chrono::system_clock::to_time_t(now));
  const auto name = fmt::format("{}.{}-{:%Y-%m-%d-%H%M%S}", store.string(), what, moment);
  const auto isFree = [](const fs::path& candidate) {
    return isMissing(candidate) && std::ranges::all_of(kStoreSideFileSuffixes, [&](const auto suffix) {
             return isMissing(storeSideFile(candidate, suffix));
           });
  };
  fs::path free = name;
  for (int number = 2; !isFree(free); ++number) free = fmt::format("{}-{}", name, number);
  return free;
}

Status copyStore(const fs::path& from, const fs::path& to) {
  const auto files = presentFiles(from);
  std::vector<fs::path> made;
  const auto copyAll = [&]() -> Status {
    const auto draft = [](fs::path name) { return name += ".new"; };
    for (const auto& file : files) {
      made.push_back(draft(renamed(file, from, to)));
      if (auto status = copyFile(file, made.back()); !status) return status;
    }
    // The database comes last: without it there is no store yet.
    for (const auto& file : files) {
      const auto name = renamed(file, from, to);
      made.push_back(name);
      if (auto status = renameForGood(draft(name), name); !status) return status;
    }
    return {};
  };
  auto status = copyAll();
  if (!status) {
    std::error_code ignored;
    for (const auto& file : made) fs::remove(file, ignored);
  }
  return status;
}

Result<fs::path> copyForRescue(const fs::path& store, Date now) {
  std::error_code failure;
  const auto prefix = store.filename().string() + ".damaged-";
  for (const auto& entry : fs::directory_iterator(store.parent_path(), failure)) {
    if (entry.path().filename().string().starts_with(prefix) && isSameVersion(store, entry.path())) {
      return entry.path();
    }
  }
  auto copy = nameBeside(store, "damaged", now);
  if (auto status = copyStore(store, copy); !status) return status.error();
  return copy;
}

Result<std::vector<fs::path>> setSideFilesAside(const fs::path& store, Date now) {
  std::vector<fs::path> renamed;
  std::error_code failure;
  if (logIsEmpty(store)) {
    for (const auto suffix : kStoreSideFileSuffixes) fs::remove(storeSideFile(store, suffix), failure);
    return renamed;
  }
  const auto aside = nameBeside(store, "set-aside", now);
  for (const auto suffix : kStoreSideFileSuffixes) {
    const auto side = storeSideFile(store, suffix);
    if (isMissing(side)) continue;
    renamed.push_back(storeSideFile(aside, suffix));
    if (auto status = renameForGood(side, renamed.back()); !status) return status.error();
    logWarning("WARNING: \"" + side.string() + "\" does not belong to the library and is now called \"" +
               renamed.back().string() + "\".");
  }
  return renamed;
}

Status renameForGood(const fs::path& from, const fs::path& to) {
  std::error_code failure;
  fs::rename(from, to, failure);
  if (failure) return fileError(to, failure);
  return synchronise(to.parent_path());
}

// Where a directory cannot be locked, as on some network disks, the store is made unguarded.
DirectoryLock::DirectoryLock(const fs::path& directory)
    : descriptor_(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (descriptor_ < 0) return;
  while (::flock(descriptor_, LOCK_EX) != 0 && errno == EINTR) {
  }
}

DirectoryLock::~DirectoryLock() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

}  // namespace quorlo
