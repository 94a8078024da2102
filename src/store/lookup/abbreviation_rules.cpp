#include "store/lookup/abbreviation_rules.h"

#include "base/localized.h"
#include "base/log.h"
#include "store/context/managed_object_context.h"
#include "store/localized_format.h"
#include "store/records/ql_snippet.h"
#include "text/graphemes.h"
#include "text/utf.h"

#include <utility>

namespace quorlo {

std::optional<AbbreviationFault> faultOfAbbreviation(std::u16string_view abbreviation) {
  if (abbreviation.find_first_of(u" \u00A0") != std::u16string_view::npos) {
    return AbbreviationFault::illegalCharacters;
  }
  if (abbreviation.size() > kLongestAbbreviation && graphemeCount(abbreviation) > kLongestAbbreviation) {
    return AbbreviationFault::tooLong;
  }
  return std::nullopt;
}

AbbreviationRules::AbbreviationRules(const ManagedObjectContext& context, QuotationMarks quotationMarks)
    : context_(context), quotationMarks_(std::move(quotationMarks)) {}

std::optional<std::u16string> AbbreviationRules::validate(std::u16string_view abbreviation,
                                                          const QLSnippet& snippet) const {
  if (const auto fault = faultOfAbbreviation(abbreviation)) {
    switch (*fault) {
      case AbbreviationFault::illegalCharacters:
        logInfo("abbreviation " + userText(toUtf8(abbreviation)) + " contains illegal characters");
        return localized(u"The abbreviation contains one or more illegal characters.");
      case AbbreviationFault::tooLong:
        logInfo("abbreviation is too long: " + std::to_string(graphemeCount(abbreviation)) + " characters");
        return localized(u"The abbreviation is too long.");
    }
  }
  const auto other = context_.otherLiveSnippet(abbreviation, snippet);
  if (!other) return std::nullopt;
  return localizedFormat(u"The abbreviation %@ is already in use by %@.",
                         quoted(std::u16string(abbreviation)), quoted(other->displayTitle()));
}

std::shared_ptr<QLSnippet> AbbreviationRules::prefixConflict(std::u16string_view abbreviation,
                                                             const QLSnippet& snippet,
                                                             AbbreviationTriggerType trigger) const {
  if (trigger == AbbreviationTriggerType::delimiterKey) return nullptr;
  const auto starts = graphemeStarts(abbreviation);
  for (std::size_t length = 1; length < starts.size(); ++length) {
    if (auto found = context_.otherLiveSnippet(abbreviation.substr(0, starts[length]), snippet)) return found;
  }
  return nullptr;
}

std::optional<std::u16string> AbbreviationRules::advice(std::u16string_view abbreviation,
                                                        const QLSnippet& snippet,
                                                        AbbreviationTriggerType triggerType) const {
  const auto other = prefixConflict(abbreviation, snippet, triggerType);
  if (!other) return std::nullopt;
  return localizedFormat(u"The abbreviation %@ expands before this one is typed to its end.",
                         quoted(other->abbreviation()));
}

std::u16string AbbreviationRules::quoted(const std::u16string& text) const {
  return quotationMarks_.begin + text + quotationMarks_.end;
}

}  // namespace quorlo
