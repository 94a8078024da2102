#include "app/settings/search_scopes.h"

#include "base/localized.h"
#include "text/utf.h"

namespace quorlo {

std::u16string SearchScopes::displayString() const {
  if (*this == kTitleScope) return localized(u"Title");
  if (*this == kAbbreviationScope) return localized(u"Abbreviation");
  if (*this == kTextScope) return localized(u"Text");
  return u"n/a";
}

std::string SearchScopes::description() const {
  std::string names;
  for (const auto member : members()) {
    if (!contains(member)) continue;
    if (!names.empty()) names += ", ";
    names += toUtf8(member.displayString());
  }
  return "<SearchScopes: name = " + (names.empty() ? "n/a" : names) + ">";
}

}  // namespace quorlo
