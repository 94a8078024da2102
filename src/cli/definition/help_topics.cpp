#include "cli/definition/help_topics.h"

#include <algorithm>
#include <array>

namespace quorlo {
namespace {

constexpr auto kMacros =
    "A macro stands in the text of a snippet between two percent signs. It begins and ends with its type; its "
    "arguments stand between colons, in any order. In a value \":\" is written \"(!(colon)!)\", \"=\" "
    "\"(!(equal)!)\" and \"%\" \"(!(percent)!)\".\n\n"
    "  %textfield:name=Name:default=friend:textfield%\n"
    "  %options:name=Size:default=0:name0=S:name1=M:options%\n"
    "  %date:dateLength=short:timeLength=none:math=7:mathType=days:date%\n"
    "  %snippet:abbreviation=sig:snippet%\n"
    "  %clipboard%\n"
    "  %cursor%\n"
    "  %specialKey:value=tab:specialKey%\n\n"
    "A text field and a list of options are asked for before the text is inserted. The options are name0, name1 and "
    "so on; default is the number of the one that is chosen at first. With multiple=1 several may be chosen; "
    "separator stands between them.\n\n"
    "The lengths of a date and a time are none, short, medium, long, full and custom. Custom ones are written in "
    "dateFormat and timeFormat: each field is a percent sign and the letters of a Unicode date pattern, %1 is a "
    "colon. math moves the date by so many seconds, minutes, hours, days, months or years. With showPicker=1 the "
    "date is asked for.\n\n"
    "  %date:dateLength=custom:dateFormat=%dd.%MM.%yyyy:timeLength=none:date%\n\n"
    "A snippet macro is replaced by the snippet with the abbreviation, and by nothing where there is none. "
    "The keys are backspace, delete, tab, return, escape, space, leftArrow, rightArrow, upArrow and downArrow.\n\n"
    "To see what a text becomes: quorlo expand";

constexpr auto kTables =
    "A table is a text in UTF-8, UTF-16 or Windows-1252 with a row for each snippet. Commas, semicolons, tabs or "
    "vertical bars stand between its fields. A field that holds the separator or a line break stands in "
    "quotation marks. Within a field quotation marks stay as they are.\n\n"
    "  abbreviation,title,text\n"
    "  brb,Back soon,be right back\n"
    "  sig,,\"Kind regards, Ada\"\n\n"
    "The first row names the columns; --no-header says that it is a snippet. Columns that the options --title, "
    "--abbreviation and --text do not name are recognised by their names. Without such names one column is "
    "the text, two are abbreviation and text, and three are title, abbreviation and text. To see what would be "
    "imported, add --dry-run; to take an import back: quorlo import --undo";

}  // namespace

std::span<const HelpTopic> helpTopics() {
  static const std::array<HelpTopic, 2> topics{{{"macros", kMacros}, {"tables", kTables}}};
  return topics;
}

const HelpTopic* helpTopic(std::string_view name) {
  const auto topics = helpTopics();
  const auto found = std::ranges::find(topics, name, &HelpTopic::name);
  return found == topics.end() ? nullptr : &*found;
}

}  // namespace quorlo
