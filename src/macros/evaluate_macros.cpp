#include "macros/evaluate_macros.h"

#include "base/log.h"
#include "macros/find_macros.h"
#include "macros/macro_arguments.h"
#include "text/utf.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace quorlo {
namespace {

template <class Answer>
const Answer* as(const FillInAnswer* answer) {
  return answer ? std::get_if<Answer>(answer) : nullptr;
}

template <class Number>
std::optional<Number> readNumber(std::u16string_view name, std::u16string_view macroString) {
  const auto value = readInteger(valueForArgument(name, macroString).value_or(u""));
  if (!value || !std::in_range<Number>(*value)) return std::nullopt;
  return static_cast<Number>(*value);
}

class Evaluation {
 public:
  Evaluation(const AttributedString& text, std::span<const MacroType> types, const MacroValues& values)
      : text_(text), types_(types), values_(values) {}

  EvaluatedText run() {
    const auto macros = readableMacros(text_.string());
    if (!values_.answers.empty()) fields_ = fillInMacros(text_.string(), macros).fieldOfMacro;
    for (std::size_t i = 0; i < macros.size(); ++i) {
      if (std::ranges::find(types_, macros[i].type) == types_.end()) continue;
      result_.text.append(text_, {done_, macros[i].range.location - done_});
      done_ = macros[i].range.end();
      evaluate(macros[i], answerOf(i));
    }
    result_.text.append(text_, {done_, text_.size() - done_});
    return std::move(result_);
  }

 private:
  const FillInAnswer* answerOf(std::size_t macro) const {
    const auto field = macro < fields_.size() ? fields_[macro] : std::nullopt;
    if (!field || *field >= values_.answers.size() || !values_.answers[*field]) return nullptr;
    return &*values_.answers[*field];
  }

  void evaluate(const MacroOccurrence& macro, const FillInAnswer* answer) {
    const auto& attributes = text_.attributesAt(macro.range.location);
    const auto macroString =
        std::u16string_view(text_.string()).substr(macro.range.location, macro.range.length);
    const auto insert = [&](std::u16string_view text) { result_.text.append(text, attributes); };
    switch (macro.type) {
      case MacroType::textField:
        return insert(textFieldText(macroString, as<std::u16string>(answer)));
      case MacroType::options:
        return insert(optionsText(macroString, as<std::vector<std::u16string>>(answer)));
      case MacroType::date:
        return insert(dateText(macroString, as<Moment>(answer)));
      case MacroType::snippet:
        // Typing out its markup would help nobody.
        return logWarning("WARNING: #nst3Lev - Snippets are nested too deeply, left out: " +
                          userText(toUtf8(macroString)));
      case MacroType::clipboard:
        return insertClipboard(macroString, attributes);
      case MacroType::cursor:
        result_.cursorRange = here();
        result_.keysBeforeCursor = result_.keys.size();
        return;
      case MacroType::specialKey:
        return addSpecialKey(macroString);
    }
  }

  static std::u16string textFieldText(std::u16string_view macroString, const std::u16string* entered) {
    return entered ? *entered : valueForArgument(u"default", macroString).value_or(u"");
  }

  static std::u16string optionsText(std::u16string_view macroString,
                                    const std::vector<std::u16string>* chosen) {
    const auto list = optionList(macroString);
    if (chosen) return joinChoices(list, *chosen);
    if (list.entries.empty()) return {};
    return joinChoices(list, {list.entries[list.defaultEntry]});
  }

  std::u16string dateText(std::u16string_view macroString, const Moment* picked) const {
    if (picked) return values_.renderDate(macroString, *picked, DateOffset::ignore);
    return values_.renderDate(macroString, values_.now, DateOffset::apply);
  }

  void insertClipboard(std::u16string_view macroString, const TextAttributes& attributes) {
    const bool textOnly = readBoolean(valueForArgument(u"pasteText", macroString).value_or(u""));
    if (!values_.clipboard) {
      addKey({here(), std::string(textOnly ? kClipboardTextKey : kClipboardKey)});
    } else if (textOnly || values_.clipboard->isPlain()) {
      result_.text.append(values_.clipboard->string(), attributes);
    } else {
      result_.text.append(*values_.clipboard);
    }
  }

  void addSpecialKey(std::u16string_view macroString) {
    const auto value = valueForArgument(u"value", macroString);
    if (value && *value != u"combi") {
      if (specialKeyFromRawValue(*value)) return addKey({here(), toUtf8(*value)});
      return logWarning("WARNING: #sPk4unk - " + userText(toUtf8(*value)));
    }
    const auto code = readNumber<KeyCode>(u"code", macroString);
    if (!code) {
      return logWarning("WARNING: #skM7kno - A special key names no key, left out: " +
                        userText(toUtf8(macroString)));
    }
    const auto flags = readNumber<ModifierFlags>(u"modFlags", macroString).value_or(0);
    addKey({here(), std::string(kCombinationKey), KeyCombination{*code, flags}});
  }

  void addKey(KeyStep key) { result_.keys.push_back(std::move(key)); }
  TextRange here() const { return {result_.text.size(), 0}; }

  const AttributedString& text_;
  std::span<const MacroType> types_;
  const MacroValues& values_;
  std::vector<std::optional<std::size_t>> fields_;  // by macro
  EvaluatedText result_;
  std::size_t done_ = 0;
};

}  // namespace

EvaluatedText evaluateMacros(const AttributedString& text, std::span<const MacroType> types,
                             const MacroValues& values) {
  return Evaluation(text, types, values).run();
}

}  // namespace quorlo
