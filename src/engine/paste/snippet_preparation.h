#pragma once

#include "macros/prepared_snippet.h"
#include "text/attributed_string.h"

#include <functional>
#include <optional>

namespace quorlo {

class QLSnippet;

// Turns a snippet's content into what is inserted. Main thread.
class SnippetPreparation {
 public:
  // Absent when the user called it off.
  using Completion = std::function<void(std::optional<PreparedSnippet>)>;

  virtual ~SnippetPreparation() = default;

  // Completes once, during the call or later (after the user has filled in what the snippet asks for).
  virtual void prepare(AttributedString content, const QLSnippet& snippet, Completion completion) = 0;

  // Calls an open question off; its completion is told so later. Leaves the focus where it is.
  virtual void callOff() = 0;
};

}  // namespace quorlo
