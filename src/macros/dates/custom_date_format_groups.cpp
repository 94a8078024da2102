#include "macros/dates/custom_date_format_groups.h"

#include "base/localized.h"

#include <initializer_list>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

void addGroup(std::vector<DateTokenGroup>& groups, std::u16string label,
              std::initializer_list<std::u16string_view> patterns) {
  DateTokenGroup group{std::move(label), static_cast<int>(groups.size()), {}};
  for (const auto pattern : patterns) group.tokens.push_back({u"%" + std::u16string(pattern)});
  groups.push_back(std::move(group));
}

}  // namespace

std::vector<DateTokenGroup> dateTokenGroups() {
  std::vector<DateTokenGroup> groups;
  // Translators: the day of the month, a part of a date's format
  addGroup(groups, localized(u"Day"), {u"dd", u"d"});
  addGroup(groups, localized(u"Month"), {u"MMMM", u"MMM", u"MM", u"M"});
  addGroup(groups, localized(u"Year"), {u"YY", u"Y"});
  addGroup(groups, localized(u"Quarter"), {u"Q", u"QQ", u"QQQ"});
  addGroup(groups, localized(u"Weekday"), {u"EEEEE", u"EEE", u"EEEE"});
  addGroup(groups, localized(u"Day of Year"), {u"DDD", u"DD", u"D"});
  addGroup(groups, localized(u"Week of Month"), {u"W", u"WW"});
  addGroup(groups, localized(u"Week of Year"), {u"w", u"ww"});
  return groups;
}

std::vector<DateTokenGroup> timeTokenGroups() {
  std::vector<DateTokenGroup> groups;
  addGroup(groups, localized(u"Second"), {u"ss", u"s"});
  addGroup(groups, localized(u"Minute"), {u"m", u"mm"});
  addGroup(groups, localized(u"Hour"), {u"hh", u"h", u"HH"});
  addGroup(groups, localized(u"AM/PM"), {u"a"});
  addGroup(groups, localized(u"Timezone"), {u"O", u"VVV", u"VV", u"V", u"zzzz", u"v", u"XXX", u"X"});
  return groups;
}

}  // namespace quorlo
