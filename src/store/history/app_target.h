#pragma once

#include <string_view>

namespace quorlo {

// The programs that write to the library. Each keeps the time up to which it has processed the history
// under its raw value.
enum class AppTarget { app, shareExtension, keyboard };

inline constexpr AppTarget kAppTargets[] = {AppTarget::app, AppTarget::shareExtension, AppTarget::keyboard};

constexpr std::string_view rawValue(AppTarget target) {
  constexpr std::string_view kRawValues[] = {"app", "shareExtension", "snippetsKeboard"};
  return kRawValues[static_cast<int>(target)];
}

}  // namespace quorlo
