#pragma once

#include "base/result.h"

#include <memory>

namespace quorlo {

class Environment;
class ManagedObjectContext;

// The user's library as a command uses it: a background context of its own over the file, whose saves come
// into a running Quorlo by the history. `environment` outlives the context.

// Neither a library nor one of the previous version, from which one is begun.
bool libraryIsMissing(const Environment& environment);

// To be changed: other programs that save wait until it is saved, or gone.
Result<std::unique_ptr<ManagedObjectContext>> openOrBeginLibrary(const Environment& environment);

// The same for a command that only reads: also on a disk that is full or mounted read-only, where a save
// fails.
Result<std::unique_ptr<ManagedObjectContext>> openLibraryToRead(const Environment& environment);

// One that is kept nowhere.
std::unique_ptr<ManagedObjectContext> emptyLibrary(const Environment& environment);

}  // namespace quorlo
