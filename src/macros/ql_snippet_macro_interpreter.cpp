#include "macros/ql_snippet_macro_interpreter.h"

#include "macros/dates/date_and_time_formatter.h"
#include "platform/environment/environment.h"

#include <utility>

namespace quorlo {

QLSnippetMacroInterpreter::QLSnippetMacroInterpreter(const Environment& environment, SnippetLookup lookup)
    : environment_(environment), lookup_(std::move(lookup)) {}

QLSnippetMacroInterpreter::~QLSnippetMacroInterpreter() = default;

AttributedString QLSnippetMacroInterpreter::resolveSnippetMacros(AttributedString text,
                                                                 const std::u16string& abbreviation,
                                                                 LeftOutSnippets* leftOut) const {
  std::set<std::u16string> used;
  if (!abbreviation.empty()) used.insert(abbreviation);
  return resolveSnippetMacros(std::move(text), used, kNestedSnippetDepth, leftOut);
}

AttributedString QLSnippetMacroInterpreter::resolveSnippetMacros(AttributedString text,
                                                                 const std::set<std::u16string>& used,
                                                                 int depth, LeftOutSnippets* leftOut) const {
  return quorlo::resolveSnippetMacros(std::move(text), used, depth, lookup_, leftOut);
}

EvaluatedText QLSnippetMacroInterpreter::evaluate(const AttributedString& text,
                                                  std::span<const MacroType> types, FillInAnswers answers,
                                                  std::optional<AttributedString> clipboard) const {
  // Language and time zone are those of this moment.
  if (dateAndTimeFormatter_) dateAndTimeFormatter_->readEnvironment();
  const auto renderDate = [this](std::u16string_view macroString, Moment date, DateOffset offset) {
    return renderDateMacro(macroString, date, offset, dateAndTimeFormatter());
  };
  return evaluateMacros(text, types,
                        {std::move(answers), std::move(clipboard), momentOf(environment_.now()), renderDate});
}

DateAndTimeFormatter& QLSnippetMacroInterpreter::dateAndTimeFormatter() const {
  if (!dateAndTimeFormatter_) dateAndTimeFormatter_ = std::make_unique<DateAndTimeFormatter>(environment_);
  return *dateAndTimeFormatter_;
}

}  // namespace quorlo
