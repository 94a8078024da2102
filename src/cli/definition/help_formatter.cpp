#include "cli/definition/help_formatter.h"

#include "cli/definition/arguments.h"

#include <cstddef>
#include <sstream>

namespace quorlo {
namespace {

constexpr std::size_t kColumns = 80;
constexpr std::size_t kDescriptionColumns = 50;  // beside the names

// The texts of the help are ASCII.
std::string wrapped(const std::string& paragraph, std::size_t columns) {
  std::istringstream words(paragraph);
  std::string text;
  std::size_t column = 0;
  for (std::string word; words >> word;) {
    if (column > 0 && column + 1 + word.size() > columns) {
      text += '\n';
      column = 0;
    } else if (column > 0) {
      text += ' ';
      ++column;
    }
    text += word;
    column += word.size();
  }
  return text;
}

std::string wrappedParagraphs(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    result += (line.starts_with("  ") ? line : wrapped(line, kColumns)) + "\n";
  }
  return result;
}

}  // namespace

std::string HelpFormatter::make_description(const CLI::App* app) const {
  return wrappedParagraphs(app->get_description());
}

std::string HelpFormatter::make_footer(const CLI::App* app) const {
  const auto footer = app->get_footer();
  return footer.empty() ? "" : "\n" + wrappedParagraphs(footer);
}

std::string HelpFormatter::make_subcommand(const CLI::App* command) const {
  std::ostringstream out;
  CLI::detail::format_help(out, command->get_name(), wrapped(command->get_description(), kDescriptionColumns),
                           column_width_);
  return out.str();
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
  if (option->get_positional()) return option->get_expected_max() > 1 ? "..." : "";
  return takesValue(*option) ? " " + option->get_type_name() : "";
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
  return wrapped(option->get_description(), kDescriptionColumns);
}

}  // namespace quorlo
