#pragma once

#include "base/result.h"
#include "import/import_data.h"

#include <string_view>

namespace quorlo {

// The snippets of a "textexpander" or "textexpanderbackup" property list, with its groups as folders.
// docs/formats.md says what is known of the format and from where. `fileName`, without its folders, names the
// folder of snippets that are in no named group. Only what the file itself holds is taken: names of other
// files in it are never followed. Any thread.
Result<ImportData> readTextExpander(std::string_view bytes, std::string_view fileName);

}  // namespace quorlo
