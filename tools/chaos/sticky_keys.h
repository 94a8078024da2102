#pragma once

#include <string>

namespace quorlo {

// As a settings dialog does it.
void setStickyKeys(const std::string& display, bool on);

}  // namespace quorlo
