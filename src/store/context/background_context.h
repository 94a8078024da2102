#pragma once

#include "base/result.h"
#include "store/context/library_use.h"
#include "store/context/managed_object_context.h"

#include <filesystem>
#include <memory>

namespace quorlo {

// A context of its own over the library's file, which exists and has the current layout, with every record
// loaded. It is used and destroyed on the calling thread, whichever that is. The configuration's store is
// made here.
Result<std::unique_ptr<ManagedObjectContext>> openBackgroundContext(
    const std::filesystem::path& storeFile, ManagedObjectContext::Configuration configuration,
    LibraryUse use = LibraryUse::reading);

}  // namespace quorlo
