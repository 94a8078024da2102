#include "cli/local_date.h"

#include <array>
#include <chrono>
#include <ctime>

namespace quorlo {
namespace {

std::string format(Date moment, const char* form) {
  const auto seconds =
      static_cast<std::time_t>(std::chrono::floor<std::chrono::seconds>(moment.time_since_epoch()).count());
  std::tm parts{};
  if (::localtime_r(&seconds, &parts) == nullptr) return {};
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), form, &parts)};
}

}  // namespace

std::string localDate(Date moment) {
  return format(moment, "%Y-%m-%d %H:%M");
}

std::string localDateAndTime(Date moment) {
  return format(moment, "%Y-%m-%d %H:%M:%S");
}

}  // namespace quorlo
