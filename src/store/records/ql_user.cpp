#include "store/records/ql_user.h"

#include "base/localized.h"
#include "store/context/managed_object_context.h"
#include "store/localized_format.h"

#include <fmt/format.h>

#include <cmath>

namespace quorlo {
namespace {

const QLUser& user(const ManagedObject& record) {
  return static_cast<const QLUser&>(record);
}

// In the two largest units that say something.
std::u16string durationText(double minutes) {
  const auto seconds = static_cast<std::int64_t>(std::llround(minutes * 60));
  if (seconds < 60) return localizedCount(seconds, u"1 second", u"%d seconds");
  const auto wholeMinutes = seconds / 60;
  if (wholeMinutes < 60) return localizedCount(wholeMinutes, u"1 minute", u"%d minutes");
  const auto hours = localizedCount(wholeMinutes / 60, u"1 hour", u"%d hours");
  if (wholeMinutes % 60 == 0) return hours;
  return hours + u' ' + localizedCount(wholeMinutes % 60, u"1 minute", u"%d minutes");
}

std::u16string savedText(const QLUser& user, std::u16string_view sentence) {
  if (user.savedChars() == 0 && user.savedMinutes() <= 0) {
    return localized(u"You haven't used any of your snippets yet.");
  }
  return localizedFormat(sentence, durationText(user.savedMinutes()));
}

}  // namespace

constinit const Attribute<Date> QLUser::kCreationDate{
    {kEntity, "creationDate", [](const ManagedObject& record) -> ValueView {
       const auto& date = user(record).creationDate_;
       return date ? ValueView(*date) : ValueView();
     }}};
constinit const Attribute<std::int64_t> QLUser::kSavedChars{
    {kEntity, "savedChars",
     [](const ManagedObject& record) -> ValueView { return user(record).savedChars_; }}};
constinit const Attribute<double> QLUser::kSavedMinutes{
    {kEntity, "savedMinutes",
     [](const ManagedObject& record) -> ValueView { return user(record).savedMinutes_; }}};
constinit const Attribute<std::int64_t> QLUser::kWordsPerMinute{
    {kEntity, "wordsPerMinute",
     [](const ManagedObject& record) -> ValueView { return std::int64_t{user(record).wordsPerMinute_}; }}};

void QLUser::setCreationDate(Date date) {
  set(creationDate_, std::optional(date), kCreationDate);
}
void QLUser::setSavedChars(std::int64_t count) {
  set(savedChars_, count, kSavedChars);
}
void QLUser::setSavedMinutes(double minutes) {
  set(savedMinutes_, minutes, kSavedMinutes);
}
void QLUser::setWordsPerMinute(std::int16_t speed) {
  set(wordsPerMinute_, speed, kWordsPerMinute);
}

std::string QLUser::description() const {
  return fmt::format(" savedChars = {}: savedMinutes = {}", savedChars_, savedMinutes_);
}

std::u16string QLUser::statisticsText() const {
  return savedText(*this, u"You have saved %@ of typing with Quorlo.");
}

std::u16string QLUser::sharedStatisticsText() const {
  return savedText(*this, u"I have saved %@ of typing with Quorlo.");
}

void QLUser::awakeFromInsert(ManagedObjectContext& context) {
  if (context.kind() == ManagedObjectContext::Kind::main && !creationDate_) creationDate_ = context.now();
}

}  // namespace quorlo
