#pragma once

#include "store/records/abbreviation_trigger_type.h"
#include "text/locale_quotes.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

class ManagedObjectContext;
class QLSnippet;

inline constexpr std::size_t kLongestAbbreviation = 30;  // user-perceived characters

enum class AbbreviationFault { illegalCharacters, tooLong };

// What forbids the abbreviation whatever else the library holds. The characters are looked at first: a
// space or a no-break space anywhere is illegal, everything else is allowed.
std::optional<AbbreviationFault> faultOfAbbreviation(std::u16string_view abbreviation);

// Which abbreviations a snippet may have beside the others of its library. Each question costs the same
// whatever the library's size. Main thread.
class AbbreviationRules {
 public:
  // `context` outlives the rules. The marks are put around abbreviations and titles in messages.
  AbbreviationRules(const ManagedObjectContext& context, QuotationMarks quotationMarks);

  // Nothing when the snippet may have the abbreviation, as it may always have none; else the first fault,
  // in words for the user: illegal characters, too long, in use by another live snippet.
  std::optional<std::u16string> validate(std::u16string_view abbreviation, const QLSnippet& snippet) const;

  // The other live snippet that expands before this abbreviation can be typed to its end, the one with the
  // shortest abbreviation; null when there is none. With a delimiter key no abbreviation is in the way of
  // another.
  std::shared_ptr<QLSnippet> prefixConflict(std::u16string_view abbreviation, const QLSnippet& snippet,
                                            AbbreviationTriggerType trigger) const;
  // The same in words for the user; absent when there is none. Such an abbreviation may be used all the same.
  std::optional<std::u16string> advice(std::u16string_view abbreviation, const QLSnippet& snippet,
                                       AbbreviationTriggerType triggerType) const;

 private:
  std::u16string quoted(const std::u16string& text) const;

  const ManagedObjectContext& context_;
  QuotationMarks quotationMarks_;
};

}  // namespace quorlo
