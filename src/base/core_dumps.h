#pragma once

namespace quorlo {

// Decides whether a crash of this process may leave a core dump and whether other processes of the user may
// read its memory. Both are allowed when a process starts. Any thread.
void allowCoreDumps(bool allowed);

}  // namespace quorlo
