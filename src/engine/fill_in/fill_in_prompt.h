#pragma once

#include "macros/fill_in_macros.h"
#include "text/attributed_string.h"

#include <functional>
#include <optional>
#include <vector>

namespace quorlo {

// Asks the user for what the fill-in macros of a snippet leave open. Main thread.
class FillInPrompt {
 public:
  // Absent when the user called the insertion off, or when nothing can be inserted any more.
  using Completion = std::function<void(std::optional<FillInAnswers>)>;

  virtual ~FillInPrompt() = default;

  // `text` has its nested snippets resolved; `fields` are its questions, at least one. The completion is
  // called once, never inside the call, after the application that was in front is in front again. One
  // question at a time: an earlier one that is still open is called off.
  virtual void ask(AttributedString text, std::vector<FillInField> fields, Completion completion) = 0;

  // Calls an open question off: its window closes, the focus stays where the user has put it, and the
  // completion is told so later.
  virtual void callOff() = 0;
};

}  // namespace quorlo
