#pragma once

#include "base/result.h"
#include "import/import_data.h"

#include <string_view>

namespace quorlo {

// The one snippet of a clipping file (.textClipping): its text as it stands, or its picture, titled by the
// file's name. Those that keep their content in a resource fork are refused with what to do about it;
// docs/formats.md. Any thread.
Result<ImportData> readClipping(std::string_view bytes, std::string_view fileName);

}  // namespace quorlo
