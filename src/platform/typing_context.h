#pragma once

#include <cstdint>
#include <optional>

namespace quorlo {

// Why no abbreviation may expand where the user types now.
enum class TypingObstacle {
  keyboardIsTaken,  // another program, or a prompt, has the keyboard for itself
  passwordField,
  inputMethod,  // keys go into an input method, which makes other text of them
};

// Where the keys go that the user types now. Main thread, but for `stamp`.
class TypingContext {
 public:
  virtual ~TypingContext() = default;

  // Absent while abbreviations may expand. Asked for each key, after the active application: the adapters
  // keep the answer current, so that it costs no round trip.
  virtual std::optional<TypingObstacle> obstacle() const = 0;

  // A number that is another one once the active application or the obstacle may be others than they were; 0
  // while that cannot be told. Read before those it shows whether they still hold. Any thread; no round trip.
  virtual std::uint64_t stamp() const = 0;
};

}  // namespace quorlo
