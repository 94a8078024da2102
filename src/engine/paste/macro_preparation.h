#pragma once

#include "base/life_token.h"
#include "engine/paste/snippet_preparation.h"
#include "macros/fill_in_macros.h"

namespace quorlo {

class FillInPrompt;
class QLSnippetMacroInterpreter;

// Prepares a snippet by its macros: nested snippets are put in, the user is asked where fields are open,
// the rest is evaluated, and the text is cut at the keys to press.
class MacroPreparation : public SnippetPreparation {
 public:
  // The references must outlive the preparation.
  MacroPreparation(const QLSnippetMacroInterpreter& interpreter, FillInPrompt& prompt)
      : interpreter_(interpreter), prompt_(prompt) {}

  void prepare(AttributedString content, const QLSnippet& snippet, Completion completion) override;
  void callOff() override;

 private:
  PreparedSnippet evaluate(const AttributedString& resolved, FillInAnswers answers) const;

  const QLSnippetMacroInterpreter& interpreter_;
  FillInPrompt& prompt_;
  LifeToken life_;
};

}  // namespace quorlo
