#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// The languages that environment variables name: ICU locale names, the most preferred first, each once,
// never empty. Each value is empty or holds POSIX locale names separated by colons ("de_DE.UTF-8",
// "sr_RS@latin"); the values stand in the order in which they count. The locales C and POSIX are English,
// and so is a session that names none; what cannot be a locale's name is left out.
std::vector<std::string> preferredLanguages(std::span<const std::string_view> values);

}  // namespace quorlo
