#pragma once

#include <string>

namespace CLI {
class App;
}

namespace quorlo {

// The manual page of the whole command line, for man(1): its text in the markup of groff_man(7), ASCII only.
std::string manPage(const CLI::App& app, const std::string& version);

}  // namespace quorlo
