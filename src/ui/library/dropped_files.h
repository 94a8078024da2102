#pragma once

#include <filesystem>
#include <vector>

class QMimeData;

namespace quorlo {

// The files of this computer that a file manager offers in a drag; empty when it drags anything else.
std::vector<std::filesystem::path> droppedFiles(const QMimeData& data);

}  // namespace quorlo
