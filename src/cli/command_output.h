#pragma once

#include "base/result.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace quorlo {

// Where the results of a command go: buffered, and with every failure to write noticed.
class CommandOutput {
 public:
  // The descriptor stays the caller's.
  explicit CommandOutput(int descriptor);
  CommandOutput(const CommandOutput&) = delete;
  CommandOutput& operator=(const CommandOutput&) = delete;

  bool isTerminal() const { return isTerminal_; }
  // Of the terminal; 80 where it does not tell.
  std::size_t columns() const;

  void write(std::string_view text);

  // Writes the rest. Nothing is an error when nobody reads any more; readerIsGone() tells then.
  Status finish();
  bool readerIsGone() const;

 private:
  void flush();

  int descriptor_;
  bool isTerminal_;
  int failure_ = 0;  // an errno
  std::string buffer_;
};

}  // namespace quorlo
