#include "base/whole_file.h"

#include "base/file_draft.h"

namespace quorlo {

Status writeWholeFile(const std::filesystem::path& path, std::string_view content, mode_t mode) {
  FileDraft draft(path, mode);
  if (auto status = draft.open(); !status) return status;
  if (auto status = draft.write(content); !status) return status;
  return draft.takePlace();
}

}  // namespace quorlo
