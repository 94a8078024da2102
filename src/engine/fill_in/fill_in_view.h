#pragma once

#include <cstdint>
#include <functional>

namespace quorlo {

class FillInSession;

// The window in which the user fills in the fields of a session. Main thread.
class FillInView {
 public:
  enum class Outcome { insert, cancel };

  virtual ~FillInView() = default;

  // Shows the session, which must live until close(). `done` is called once, when the user has decided;
  // the window stays until it is closed.
  virtual void open(FillInSession& session, std::function<void(Outcome)> done) = 0;

  // The preview changed other than by the user's entries.
  virtual void refreshPreview() = 0;

  // There is nowhere to insert the text any more: from now on the window says so and offers to copy it,
  // which is told as `insert`.
  virtual void offerCopy(std::function<void(Outcome)> done) = 0;

  virtual void close() = 0;

  // How the display server names the window.
  virtual std::uintptr_t nativeWindow() const = 0;
};

}  // namespace quorlo
