#pragma once

#include "macros/evaluate_macros.h"
#include "macros/fill_in_macros.h"
#include "macros/resolve_snippet_macros.h"
#include "text/attributed_string.h"

#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>

namespace quorlo {

class DateAndTimeFormatter;
class Environment;

// Turns the macros of a snippet's text into what is inserted: first resolveSnippetMacros, then the
// questions of fillInMacros, then evaluate, then cutPieces. It knows no store and no window: snippets come
// from a lookup, answers and the clipboard from its caller. Nothing in a text makes it fail.
//
// One per process. Main thread: the formatter is set anew for every date.
class QLSnippetMacroInterpreter {
 public:
  // `environment` gives the clock and the user's languages, and must outlive the interpreter.
  QLSnippetMacroInterpreter(const Environment& environment, SnippetLookup lookup);
  ~QLSnippetMacroInterpreter();
  static QLSnippetMacroInterpreter& shared();

  // `abbreviation` is that of the snippet the text came from; may be empty.
  AttributedString resolveSnippetMacros(AttributedString text, const std::u16string& abbreviation,
                                        LeftOutSnippets* leftOut = nullptr) const;
  AttributedString resolveSnippetMacros(AttributedString text, const std::set<std::u16string>& used,
                                        int depth, LeftOutSnippets* leftOut = nullptr) const;

  // With the current moment as the date. Without a clipboard, clipboard macros become keys.
  EvaluatedText evaluate(const AttributedString& text, std::span<const MacroType> types,
                         FillInAnswers answers = {}, std::optional<AttributedString> clipboard = {}) const;

  // The one formatter, made on first use. Without a preferred language the program ends.
  DateAndTimeFormatter& dateAndTimeFormatter() const;

 private:
  const Environment& environment_;
  SnippetLookup lookup_;
  mutable std::unique_ptr<DateAndTimeFormatter> dateAndTimeFormatter_;
};

}  // namespace quorlo
