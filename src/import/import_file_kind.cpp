#include "import/import_file_kind.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

using enum ImportFileKind;

constexpr std::array<std::pair<std::string_view, ImportFileKind>, 9> kEndings{{
    {".csv", csv},
    {".tsv", csv},
    {".txt", csv},
    {".quorlo", library},
    {".json", library},
    {".textexpander", textExpander},
    {".textexpanderbackup", textExpander},
    {".typeit4me", typeIt4Me},
    {".textclipping", clipping},
}};

}  // namespace

std::optional<ImportFileKind> importFileKind(const std::filesystem::path& file) {
  auto ending = file.extension().string();
  std::ranges::transform(ending, ending.begin(), [](unsigned char c) { return std::tolower(c); });
  const auto* const found =
      std::ranges::find(kEndings, ending, &std::pair<std::string_view, ImportFileKind>::first);
  if (found == kEndings.end()) return std::nullopt;
  return found->second;
}

}  // namespace quorlo
