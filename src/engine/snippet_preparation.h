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
};

}  // namespace quorlo
