#include "cli/command_output.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <system_error>

namespace quorlo {
namespace {

constexpr std::size_t kBufferSize = std::size_t{64} << 10;
constexpr std::size_t kUsualColumns = 80;

std::size_t columnsOfEnvironment() {
  const auto* const variable = std::getenv("COLUMNS");
  const std::string_view text = variable ? variable : "";
  std::size_t columns = 0;
  const auto end = text.data() + text.size();
  const auto [stop, failure] = std::from_chars(text.data(), end, columns);
  return failure == std::errc() && stop == end ? columns : 0;
}

}  // namespace

CommandOutput::CommandOutput(int descriptor)
    : descriptor_(descriptor), isTerminal_(::isatty(descriptor) == 1) {}

std::size_t CommandOutput::columns() const {
  if (const auto told = columnsOfEnvironment(); told > 0) return told;
  winsize size{};
  if (::ioctl(descriptor_, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return kUsualColumns;
}

void CommandOutput::write(std::string_view text) {
  buffer_ += text;
  if (buffer_.size() >= kBufferSize) flush();
}

Status CommandOutput::finish() {
  flush();
  if (failure_ == 0 || readerIsGone()) return {};
  return Error{"The output could not be written: " + std::generic_category().message(failure_) + "."};
}

bool CommandOutput::readerIsGone() const {
  return failure_ == EPIPE;
}

void CommandOutput::flush() {
  std::string_view rest = buffer_;
  while (failure_ == 0 && !rest.empty()) {
    const auto written = ::write(descriptor_, rest.data(), rest.size());
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      failure_ = errno;
    }
  }
  buffer_.clear();
}

}  // namespace quorlo
