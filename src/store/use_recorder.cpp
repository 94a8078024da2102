#include "store/use_recorder.h"

#include "store/persistence_controller.h"
#include "store/ql_snippet.h"
#include "store/ql_user.h"

#include <algorithm>

namespace quorlo {
namespace {

constexpr double kCharactersPerWord = 5;

}  // namespace

void recordUse(PersistenceController& persistence, QLSnippet& snippet, std::int64_t insertedCharacters,
               std::int64_t typedCharacters) {
  snippet.setUseCount(snippet.useCount() + 1);
  const auto saved = std::max<std::int64_t>(0, insertedCharacters - typedCharacters);
  const auto user = persistence.currentUser();
  if (!user || saved == 0) return;
  user->setSavedChars(user->savedChars() + saved);
  if (user->wordsPerMinute() <= 0) return;
  user->setSavedMinutes(user->savedMinutes() +
                        static_cast<double>(saved) / kCharactersPerWord / user->wordsPerMinute());
}

}  // namespace quorlo
