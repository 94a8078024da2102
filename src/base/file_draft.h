#pragma once

#include "base/result.h"

#include <sys/types.h>

#include <filesystem>
#include <string_view>

namespace quorlo {

// A new content for a file, which takes the place of the former one whole or not at all, also after a power
// cut: it is written under a name of its own beside the file, which gets it in the end. Where the path is a
// link, the file that it leads to is meant, whether it is there already or not. Pipes and devices, which
// nothing can take the place of, are written to directly. Errors name the file and say what to do. One
// thread.
class FileDraft {
 public:
  // `mode` is that of a newly made file, narrowed by the process's umask; an existing one keeps its own.
  explicit FileDraft(std::filesystem::path path, mode_t mode = 0666);
  FileDraft(const FileDraft&) = delete;
  FileDraft& operator=(const FileDraft&) = delete;
  // Of a draft that has not taken its place nothing stays.
  ~FileDraft();

  // Each of them only after success of the one before.
  Status open();
  Status write(std::string_view content);
  Status takePlace();

 private:
  Status openExisting(mode_t type);
  Status openBeside(mode_t mode);
  Error failure(int reason) const;

  const std::filesystem::path path_;  // as the user knows it
  std::filesystem::path place_;       // the file itself
  std::filesystem::path draft_;       // empty once there is none
  mode_t mode_;
  bool keepsMode_ = false;
  int descriptor_ = -1;
};

// Everything, however many calls it takes; 0 or the system's error number.
int writeFully(int descriptor, std::string_view content);

}  // namespace quorlo
