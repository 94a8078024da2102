#include "engine/fill_in/fill_in_session.h"

#include "base/localized.h"
#include "macros/dates/date_macro.h"
#include "macros/macro_arguments.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

std::u16string placeholder(std::u16string_view text) {
  return u"‹" + std::u16string(text) + u"›";
}

// Its sign alone, or with its name: "⏎ (Return)".
std::u16string keyPlaceholder(std::u16string_view macroString, bool named) {
  const auto key = specialKeyFromRawValue(valueForArgument(u"value", macroString).value_or(u""));
  if (!key) return named ? placeholder(localized(u"Key Combination")) : u"⌨";
  const auto name = displayName(*key);
  return named ? placeholder(name) : name.substr(0, name.find(u' '));
}

}  // namespace

FillInSession::FillInSession(AttributedString text, std::vector<FillInField> fields, FillInPreview preview,
                             Moment now, DateAndTimeFormatter& formatter)
    : text_(std::move(text)),
      fields_(std::move(fields)),
      preview_(preview),
      now_(now),
      formatter_(formatter),
      macros_(readableMacros(text_.string())),
      fieldOfMacro_(fillInMacros(text_.string(), macros_).fieldOfMacro),
      chosen_(fields_.size()),
      answers_(fields_.size()) {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const auto& field = fields_[i];
    if (field.type == MacroType::textField) setText(i, field.defaultText);
    if (field.type == MacroType::options && !field.options.entries.empty()) {
      choose(i, {field.options.defaultEntry});
    }
  }
}

std::u16string FillInSession::text(std::size_t field) const {
  const auto& answer = answers_[field];
  return answer ? std::get<std::u16string>(*answer) : std::u16string();
}

void FillInSession::setText(std::size_t field, std::u16string text) {
  answers_[field] = std::move(text);
}

std::vector<std::size_t> FillInSession::chosen(std::size_t field) const {
  return chosen_[field];
}

void FillInSession::choose(std::size_t field, const std::vector<std::size_t>& entries) {
  std::vector<std::u16string> texts;
  for (const auto entry : entries) texts.push_back(fields_[field].options.entries[entry]);
  chosen_[field] = entries;
  answers_[field] = std::move(texts);
}

Moment FillInSession::date(std::size_t field) const {
  const auto& answer = answers_[field];
  return answer ? std::get<Moment>(*answer) : dateOfMacro(fields_[field].macroString, now_, formatter_);
}

void FillInSession::pick(std::size_t field, Moment date) {
  answers_[field] = date;
}

bool FillInSession::showsClipboard() const {
  return preview_.clipboardContent &&
         std::ranges::find(macros_, MacroType::clipboard, &MacroOccurrence::type) != macros_.end();
}

FillInSession::Reading FillInSession::preview(std::size_t longest) const {
  Reading result;
  auto& text = result.text;
  std::size_t done = 0;
  const auto appendUntil = [&](std::size_t end) {
    text.append(text_, {done, std::min(end - done, longest + 1)});
  };
  for (std::size_t i = 0; i < macros_.size() && text.size() <= longest; ++i) {
    appendUntil(macros_[i].range.location);
    const auto start = text.size();
    appendMacro(text, i);
    if (fieldOfMacro_[i]) result.places.push_back({{start, text.size() - start}, *fieldOfMacro_[i]});
    done = macros_[i].range.end();
  }
  if (text.size() <= longest) appendUntil(text_.size());
  if (text.size() > longest) {
    text = text.slice({0, longest});
    text.append(u"…");
  }
  return result;
}

void FillInSession::appendMacro(AttributedString& to, std::size_t macro) const {
  const auto& [range, type] = macros_[macro];
  const auto macroString = std::u16string_view(text_.string()).substr(range.location, range.length);
  const auto& attributes = text_.attributesAt(range.location);
  if (const auto field = fieldOfMacro_[macro]) {
    return to.append(answerText(*field, macroString), attributes);
  }
  const bool all = preview_.allMacros;
  switch (type) {
    case MacroType::date:
      return to.append(all ? renderDateMacro(macroString, now_, DateOffset::apply, formatter_)
                           : placeholder(localized(u"Date")),
                       attributes);
    case MacroType::clipboard:
      if (clipboard_) return to.append(*clipboard_);
      return to.append(placeholder(localized(u"Clipboard")), attributes);
    case MacroType::cursor:
      return to.append(all ? placeholder(localized(u"Cursor")) : u"│", attributes);
    case MacroType::specialKey:
      return to.append(keyPlaceholder(macroString, all), attributes);
    case MacroType::textField:
    case MacroType::options:
    case MacroType::snippet:
      return;  // the first two always ask; a snippet that is still there is left out
  }
}

std::u16string FillInSession::answerText(std::size_t field, std::u16string_view macroString) const {
  const auto& answer = answers_[field];
  switch (fields_[field].type) {
    case MacroType::textField:
      return text(field);
    case MacroType::options: {
      const auto* const texts = answer ? std::get_if<std::vector<std::u16string>>(&*answer) : nullptr;
      return texts ? joinChoices(optionList(macroString), *texts) : std::u16string();
    }
    default:
      return answer ? renderDateMacro(macroString, std::get<Moment>(*answer), DateOffset::ignore, formatter_)
                    : renderDateMacro(macroString, now_, DateOffset::apply, formatter_);
  }
}

}  // namespace quorlo
