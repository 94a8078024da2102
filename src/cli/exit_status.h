#pragma once

namespace quorlo {

// How a command ended, as the exit status of the process.
enum class ExitStatus {
  done = 0,
  failed = 1,  // also when nothing was found
  wrongUsage = 2,
  interrupted = 130,  // by Ctrl-C, as shells count it
};

}  // namespace quorlo
