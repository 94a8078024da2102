#pragma once

#include <cstdint>

namespace quorlo {

class PersistenceController;
class QLSnippet;

// Records an expansion that has arrived: the snippet's use count rises by one and the statistics grow by
// the characters that the user did not have to type and the minutes that these would have taken (a word
// is five characters). Characters are user-perceived ones; a choice from a menu types none.
struct RecordedUse {
  std::int64_t savedChars = 0;
  double savedMinutes = 0;
};
RecordedUse recordUse(PersistenceController& persistence, QLSnippet& snippet, std::int64_t insertedCharacters,
                      std::int64_t typedCharacters);

// An expansion that the user has taken back does not count.
void takeBackUse(PersistenceController& persistence, QLSnippet& snippet, const RecordedUse& use);

}  // namespace quorlo
