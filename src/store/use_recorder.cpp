#include "store/use_recorder.h"

#include "store/persistence_controller.h"
#include "store/records/ql_snippet.h"
#include "store/records/ql_user.h"

#include <algorithm>

namespace quorlo {
namespace {

constexpr double kCharactersPerWord = 5;

}  // namespace

RecordedUse recordUse(PersistenceController& persistence, QLSnippet& snippet, std::int64_t insertedCharacters,
                      std::int64_t typedCharacters) {
  snippet.setUseCount(snippet.useCount() + 1);
  RecordedUse use{std::max<std::int64_t>(0, insertedCharacters - typedCharacters)};
  const auto user = persistence.currentUser();
  if (!user || use.savedChars == 0) return use;
  user->setSavedChars(user->savedChars() + use.savedChars);
  if (user->wordsPerMinute() <= 0) return use;
  use.savedMinutes = static_cast<double>(use.savedChars) / kCharactersPerWord / user->wordsPerMinute();
  user->setSavedMinutes(user->savedMinutes() + use.savedMinutes);
  return use;
}

void takeBackUse(PersistenceController& persistence, QLSnippet& snippet, const RecordedUse& use) {
  snippet.setUseCount(std::max<std::int64_t>(0, snippet.useCount() - 1));
  const auto user = persistence.currentUser();
  if (!user || use.savedChars == 0) return;
  user->setSavedChars(std::max<std::int64_t>(0, user->savedChars() - use.savedChars));
  user->setSavedMinutes(std::max(0.0, user->savedMinutes() - use.savedMinutes));
}

}  // namespace quorlo
