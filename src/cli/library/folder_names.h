#pragma once

#include "base/result.h"

#include <memory>
#include <string>

namespace quorlo {

class ManagedObjectContext;
class QLCategory;

// How the user names a folder on the command line, in UTF-8: by its title, whatever the case of its letters
// where that leaves no doubt, or by its uuid.

// Any folder, also one that only collects ("Popular"). An error when there is none or more than one.
Result<std::shared_ptr<QLCategory>> folderNamed(const ManagedObjectContext& context, const std::string& name);

// One of the user's own, into which snippets can be put; null when there is none.
Result<std::shared_ptr<QLCategory>> ownFolderNamed(const ManagedObjectContext& context,
                                                   const std::string& name);

// The same, made where there is none.
Result<std::shared_ptr<QLCategory>> folderToFill(ManagedObjectContext& context, const std::string& name);

}  // namespace quorlo
