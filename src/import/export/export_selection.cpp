#include "import/export/export_selection.h"

#include <algorithm>
#include <cctype>

namespace quorlo {

std::optional<ExportFormat> exportFormat(const std::filesystem::path& file) {
  auto ending = file.extension().string();
  std::ranges::transform(ending, ending.begin(), [](unsigned char c) { return std::tolower(c); });
  if (ending == ".quorlo" || ending == ".json") return ExportFormat::json;
  if (ending == ".csv") return ExportFormat::csv;
  return std::nullopt;
}

}  // namespace quorlo
