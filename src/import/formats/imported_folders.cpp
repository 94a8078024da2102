#include "import/formats/imported_folders.h"

#include "text/utf.h"

namespace quorlo {

std::optional<std::size_t> ImportedFolders::use(const std::u16string& title, ImportData& data) {
  if (title.empty()) return std::nullopt;
  const auto [known, isNew] = indexes_.try_emplace(title, data.folders.size());
  if (isNew) data.folders.push_back(title);
  return known->second;
}

std::u16string titleOfFile(std::string_view fileName) {
  const auto ending = fileName.rfind('.');
  return toUtf16(ending == 0 ? fileName : fileName.substr(0, ending));
}

}  // namespace quorlo
