#pragma once

#include <cstddef>
#include <functional>

class QString;
class QWidget;

namespace quorlo {

class FillInSession;

// What the fields of the fill-in window tell it.
struct FillInFieldEvents {
  std::function<void()> changed;    // an answer of the session
  std::function<void()> submitted;  // by Return, or by a double click on an option
};

// The name of a field as the user reads it.
QString labelOfField(const FillInSession& session, std::size_t field);

// An input for the field, which shows its answer and changes it. The session must outlive it.
QWidget* makeFieldInput(FillInSession& session, std::size_t field, const FillInFieldEvents& events);

// Gives the input the keyboard, its whole text selected.
void focusFieldInput(QWidget& input);

}  // namespace quorlo
