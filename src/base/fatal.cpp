#include "base/fatal.h"

#include "base/log.h"

#include <cstdlib>

namespace quorlo {

void fatal(std::string_view line) {
  logError(line);
  std::abort();
}

}  // namespace quorlo
