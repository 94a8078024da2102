#pragma once

#include "base/subscription.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// The text to show for a text of the program. Base texts are in English and are the keys of the
// catalogues (GNU gettext); the text itself where no catalogue has it. What translators should know
// stands in a comment that begins "Translators:" on the line above the call. Any thread.
std::u16string localized(std::u16string_view baseText);

// Loads <language>.mo from `directory` for the first of the languages ("de_AT", then "de") that has a
// catalogue, and behind it en.mo, which adapts the English texts to this platform. Catalogues are chosen
// by the given languages alone, so a C locale gets the adapted texts too. A file that is no catalogue is
// logged and skipped. At start-up, before other threads run; the texts hold until the subscription ends.
Subscription loadCatalogues(const std::filesystem::path& directory,
                            const std::vector<std::string>& languages);

}  // namespace quorlo
