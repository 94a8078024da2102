#pragma once

#include <memory>
#include <vector>

namespace quorlo {

class CommandSession;
class QLSnippet;

// Prints a list of snippets: as columns that fit the terminal, for other programs as one line each
// (abbreviation, title, folder, uuid with tabs between), or as JSON when that is asked for.
void printSnippets(CommandSession& session, const std::vector<std::shared_ptr<QLSnippet>>& snippets);

}  // namespace quorlo
