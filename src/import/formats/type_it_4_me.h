#pragma once

#include "base/result.h"
#include "import/import_data.h"

#include <string_view>

namespace quorlo {

// The snippets of a "typeit4me" property list. There is no public description of it; docs/formats.md says
// which layouts are recognised. Texts are taken as they stand, and a notice says so. `fileName`, without its
// folders, names the folder of snippets that are in no named set. Any thread.
Result<ImportData> readTypeIt4Me(std::string_view bytes, std::string_view fileName);

}  // namespace quorlo
