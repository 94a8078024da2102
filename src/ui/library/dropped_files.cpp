#include "ui/library/dropped_files.h"

#include <QMimeData>
#include <QUrl>

namespace quorlo {

std::vector<std::filesystem::path> droppedFiles(const QMimeData& data) {
  std::vector<std::filesystem::path> files;
  for (const auto& address : data.urls()) {
    if (!address.isLocalFile()) return {};
    files.emplace_back(address.toLocalFile().toStdString());
  }
  return files;
}

}  // namespace quorlo
