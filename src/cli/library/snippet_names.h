#pragma once

#include "base/result.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

class ManagedObjectContext;
class QLSnippet;

// How the user names a snippet on the command line: by its abbreviation, else its uuid, else its title, else
// the beginning of its uuid (4 characters or more).

enum class Among { library, trash };

// An error when there is none or more than one; it lists those that are meant, or says where else one is.
Result<std::shared_ptr<QLSnippet>> snippetNamed(const ManagedObjectContext& context, std::u16string_view name,
                                                Among among);

// All of them, each once, or an error. The names are in UTF-8.
Result<std::vector<std::shared_ptr<QLSnippet>>> snippetsNamed(const ManagedObjectContext& context,
                                                              const std::vector<std::string>& names,
                                                              Among among);

// One line for messages: the beginning of the uuid, the abbreviation and the title.
std::string inOneLine(const QLSnippet& snippet);

}  // namespace quorlo
