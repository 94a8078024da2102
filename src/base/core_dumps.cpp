#include "base/core_dumps.h"

#include <sys/prctl.h>

namespace quorlo {

void allowCoreDumps(bool allowed) {
  // Cannot fail with these values.
  prctl(PR_SET_DUMPABLE, allowed ? 1 : 0, 0, 0, 0);
}

}  // namespace quorlo
