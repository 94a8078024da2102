#pragma once

namespace quorlo {

// A program that changes a library by what it finds there locks it: other programs' saves wait from before it
// is read until it is saved, or the context is gone.
enum class LibraryUse { reading, changing };

}  // namespace quorlo
