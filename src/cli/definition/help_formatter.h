#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace quorlo {

// What --help prints: lines of at most 80 columns. Lines of a footer that begin with blanks stay as they are.
class HelpFormatter final : public CLI::Formatter {
 public:
  std::string make_description(const CLI::App* app) const override;
  std::string make_footer(const CLI::App* app) const override;
  std::string make_subcommand(const CLI::App* command) const override;
  std::string make_option_opts(const CLI::Option* option) const override;
  std::string make_option_desc(const CLI::Option* option) const override;
};

}  // namespace quorlo
