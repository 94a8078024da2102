#pragma once

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <vector>

namespace quorlo {

class QLSnippet;

// A snippet as the command line prints it (docs/formats.md has the keys).
nlohmann::ordered_json snippetJson(const QLSnippet& snippet);

// {"snippets": [...]}
nlohmann::ordered_json snippetsJson(const std::vector<std::shared_ptr<QLSnippet>>& snippets);

}  // namespace quorlo
