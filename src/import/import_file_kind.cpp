#include "import/import_file_kind.h"

#include "base/localized.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

using enum ImportFileKind;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kTellingBytes = 1024;

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

// Without what may stand before the content itself.
std::string_view beginning(std::string_view content) {
  if (content.starts_with(kByteOrderMark)) content.remove_prefix(kByteOrderMark.size());
  content.remove_prefix(std::min(content.find_first_not_of(" \t\r\n"), content.size()));
  return content.substr(0, kTellingBytes);
}

}  // namespace

std::optional<ImportFileKind> importFileKind(const std::filesystem::path& file) {
  auto ending = file.extension().string();
  std::ranges::transform(ending, ending.begin(), [](unsigned char c) { return std::tolower(c); });
  const auto* const found =
      std::ranges::find(kEndings, ending, &std::pair<std::string_view, ImportFileKind>::first);
  if (found == kEndings.end()) return std::nullopt;
  return found->second;
}

bool looksLikePropertyList(std::string_view content) {
  const auto start = beginning(content);
  if (start.starts_with("bplist")) return true;
  const bool isMarkup =
      start.starts_with("<?xml") || start.starts_with("<!DOCTYPE") || start.starts_with("<plist");
  return isMarkup && start.find("plist") != std::string_view::npos;
}

bool looksLikeJson(std::string_view content) {
  const auto start = beginning(content);
  return start.starts_with('{') || start.starts_with('[');
}

std::u16string importableKinds() {
  return localized(
      u"Quorlo imports tables (.csv, .tsv, .txt), its own exports (.quorlo, .json), and .textexpander, "
      u".textexpanderbackup, .typeit4me and .textclipping files.");
}

}  // namespace quorlo
