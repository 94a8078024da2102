#pragma once

#include <span>
#include <string>
#include <string_view>

namespace quorlo {

// A text of the manual page that belongs to no single command; `quorlo help NAME` prints it.
struct HelpTopic {
  std::string_view name;
  std::string text;  // paragraphs; lines that begin with blanks are examples. ASCII
};

std::span<const HelpTopic> helpTopics();
// Null where there is none.
const HelpTopic* helpTopic(std::string_view name);

}  // namespace quorlo
