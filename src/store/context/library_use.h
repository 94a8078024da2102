#pragma once

namespace quorlo {

// Whoever changes a library by what it finds there makes other programs that save wait from before it is read
// until it is saved, or the context is gone.
enum class LibraryUse { reading, changing };

}  // namespace quorlo
