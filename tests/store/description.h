#pragma once

#include "store/context/managed_object_context.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/records/ql_user.h"
#include "text/rich_text/rich_text_archive.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <optional>
#include <set>
#include <string>

namespace quorlo {

// Everything that a library's records hold, one line for each, without what is only in memory.
class Description {
 public:
  static std::string of(ManagedObjectContext& context) {
    std::multiset<std::string> lines;
    for (const auto& each : context.fetch<QLSnippet>({}).value()) lines.insert(line(*each));
    for (const auto& each : context.fetch<QLCategory>({}).value()) lines.insert(line(*each));
    for (const auto& each : context.fetch<QLApp>({}).value()) lines.insert(line(*each));
    for (const auto& each : context.fetch<QLUser>({}).value()) lines.insert(line(*each));
    std::string text;
    for (const auto& each : lines) text += each + '\n';
    return text;
  }

 private:
  static std::string line(const QLSnippet& it) {
    const auto rich = archive(it.text());
    return fmt::format(
        "Snippet {} {} {} {} {} '{}' {} '{}' '{}' {} {} '{}' folder {} allowed {} blocked {} text {}",
        it.rowNumber(), it.uuid(), date(it.creationDate()), date(it.modifiedDate()), date(it.deletionDate()),
        toUtf8(it.title()), it.titleIsCustom(), toUtf8(it.abbreviation()), toUtf8(it.plainText()),
        it.formatted(), it.useCount(), toUtf8(it.numberOFImagesString()),
        it.category() ? it.category()->rowNumber() : 0, rows(it.allowedApps()), rows(it.blockedSnippets()),
        it.text().isPlain()
            ? 0
            : std::hash<std::string_view>()({reinterpret_cast<const char*>(rich.data()), rich.size()}));
  }
  static std::string line(const QLCategory& it) {
    return fmt::format("Category {} {} {} {} '{}' {} {} {} {} {} {} allowed {} blocked {} snippets {}",
                       it.rowNumber(), it.uuid(), date(it.creationDate()), date(it.modifiedDate()),
                       toUtf8(it.title()), it.type(), it.sourceType(), it.sort(),
                       it.shortcutKeyCode().value_or(-1), it.shortcutModifierFlags(), it.expansionBehavior(),
                       rows(it.allowedApps()), rows(it.blockedApps()), rows(it.snippets()));
  }
  static std::string line(const QLApp& it) {
    return fmt::format("App {} '{}' {} allowed by {} blocked by {}", it.rowNumber(), it.bundleID(), it.type(),
                       rows(it.allowedSnippets()), rows(it.blockedApps()));
  }
  static std::string line(const QLUser& it) {
    return fmt::format("User {} {} {} {} {}", it.rowNumber(), date(it.creationDate()), it.savedChars(),
                       it.savedMinutes(), it.wordsPerMinute());
  }

  static std::int64_t date(std::optional<Date> date) {
    using std::chrono::microseconds;
    return date ? std::chrono::floor<microseconds>(*date).time_since_epoch().count() : -1;
  }
  template <class Record>
  static std::string rows(const RecordSet<Record>& records) {
    std::set<std::int64_t> numbers;
    for (const auto* each : records) numbers.insert(each->rowNumber());
    return fmt::format("{{{}}}", fmt::join(numbers, ","));
  }
};

}  // namespace quorlo
