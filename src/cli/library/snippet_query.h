#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

class CommandDefinition;
class QLSnippet;

// Which folder a list of snippets is taken from, and its order.
struct SnippetQuery {
  std::optional<std::string> folder;
  std::string sort = "title";
  bool isReversed = false;
};

void addQuery(CommandDefinition& command, SnippetQuery& query);

// Texts without regard to case; what is newer or more used first.
void sortSnippets(std::vector<std::shared_ptr<QLSnippet>>& snippets, const SnippetQuery& query);

}  // namespace quorlo
