#pragma once

#include "import/import_data.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

// The folder of that title among those of the data, added if it is not there; none for an empty title. Groups
// of one title are one folder.
class ImportedFolders {
 public:
  std::optional<std::size_t> use(const std::u16string& title, ImportData& data);

 private:
  std::map<std::u16string, std::size_t> indexes_;
};

// A file's name without its ending, as a title.
std::u16string titleOfFile(std::string_view fileName);

}  // namespace quorlo
