#include "cli/expanding/expand_answers.h"

#include "base/iso_date.h"
#include "macros/dates/date_and_time_formatter.h"
#include "macros/dates/date_arithmetic.h"
#include "text/utf.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

using Texts = std::vector<std::u16string>;

std::string quoted(std::u16string_view text) {
  return "\"" + toUtf8(text) + "\"";
}

std::string listed(const Texts& texts) {
  std::string list;
  for (const auto& each : texts) list += (list.empty() ? "" : ", ") + quoted(each);
  return list;
}

std::u16string_view trimmed(std::u16string_view text) {
  const auto first = text.find_first_not_of(u' ');
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

// What an options field is answered with, and in which order its entries stand.
class Choices {
 public:
  explicit Choices(const FillInField& field) : field_(field) {}

  // False where the value is none that the field has.
  bool add(std::u16string_view value) {
    if (choose(value)) return true;
    if (!field_.options.multiple) return false;
    if (value.empty()) return true;
    for (std::size_t start = 0; start <= value.size();) {
      const auto end = std::min(value.find(u',', start), value.size());
      if (!choose(trimmed(value.substr(start, end - start)))) return false;
      start = end + 1;
    }
    return true;
  }

  Texts texts() const {
    Texts texts;
    for (const auto entry : chosen_) texts.push_back(field_.options.entries[entry]);
    return texts;
  }

 private:
  bool choose(std::u16string_view value) {
    const auto& entries = field_.options.entries;
    const auto found = std::ranges::find(entries, value);
    if (found == entries.end()) return false;
    chosen_.insert(static_cast<std::size_t>(found - entries.begin()));
    return true;
  }

  const FillInField& field_;
  std::set<std::size_t> chosen_;
};

// Of all names that a text may begin with the longest: a name may hold a "=".
std::optional<std::u16string> nameIn(std::u16string_view text, std::span<const std::u16string> labels) {
  std::optional<std::u16string> name;
  for (const auto& label : labels) {
    if (text.starts_with(label + u"=") && (!name || label.size() > name->size())) name = label;
  }
  return name;
}

Error noSuchField(std::u16string_view text, std::span<const FillInField> fields) {
  const auto equal = text.find(u'=');
  if (equal == text.npos) {
    return {"The answer " + quoted(text) + " has no \"=\" between the name of a field and its value."};
  }
  const auto start = "No field is called " + quoted(text.substr(0, equal)) + "; ";
  if (fields.empty()) return {start + "the text asks for nothing."};
  auto message = start + (fields.size() == 1 ? "the only one is:" : "there are:");
  for (std::size_t i = 0; i < fields.size(); ++i) message += "\n  " + describeField(fields, i);
  return {message};
}

Result<FillInAnswer> readOptions(const FillInField& field, const std::string& label, const Texts& values) {
  if (values.size() > 1 && !field.options.multiple) {
    return Error{"The field " + label + " takes one of its choices, and is answered " +
                 std::to_string(values.size()) + " times."};
  }
  Choices choices(field);
  for (const auto& value : values) {
    if (choices.add(value)) continue;
    const auto& entries = field.options.entries;
    if (entries.empty()) return Error{"The field " + label + " has nothing to choose from."};
    return Error{quoted(value) + " is no choice of the field " + label + "; these are: " + listed(entries)};
  }
  return FillInAnswer(choices.texts());
}

Result<FillInAnswer> readDate(const std::string& label, std::u16string_view value,
                              const DateContext& context) {
  const auto read = readIsoDateTime(toUtf8(value));
  if (!read) {
    return Error{quoted(value) + " is no date for the field " + label +
                 "; write it like 2026-11-22 or 2026-11-22T14:30"};
  }
  if (!read->offset) return FillInAnswer(momentOfLocalTime(read->local, context));
  return FillInAnswer(Moment(read->local.time_since_epoch() - *read->offset));
}

Result<FillInAnswer> readAnswer(const FillInField& field, const std::string& label, const Texts& values,
                                const DateContext& context) {
  if (field.type == MacroType::options) return readOptions(field, label, values);
  if (values.size() > 1) return Error{"The field " + label + " is answered more than once."};
  if (field.type == MacroType::textField) return FillInAnswer(values.front());
  return readDate(label, values.front(), context);
}

}  // namespace

std::u16string fieldLabel(std::span<const FillInField> fields, std::size_t field) {
  return fields[field].name.empty() ? u"#" + toUtf16(std::to_string(field + 1)) : fields[field].name;
}

std::string describeField(std::span<const FillInField> fields, std::size_t field) {
  const auto& [type, name, macroString, defaultText, options] = fields[field];
  const auto label = quoted(fieldLabel(fields, field));
  if (type == MacroType::textField) return label + " (a text)";
  if (type == MacroType::date) return label + " (a date)";
  return label + (options.multiple ? " (any of " : " (one of ") + listed(options.entries) + ")";
}

Result<FillInAnswers> readAnswers(std::span<const FillInField> fields, std::span<const std::string> given,
                                  const DateContext& context) {
  Texts labels;
  for (std::size_t i = 0; i < fields.size(); ++i) labels.push_back(fieldLabel(fields, i));
  // Fields of different types may have one name; the answer is for each of them.
  std::vector<Texts> values(fields.size());
  for (const auto& each : given) {
    const auto text = toUtf16(each);
    const auto name = nameIn(text, labels);
    if (!name) return noSuchField(text, fields);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (labels[i] == *name) values[i].push_back(text.substr(name->size() + 1));
    }
  }
  FillInAnswers answers(fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (values[i].empty()) continue;
    auto answer = readAnswer(fields[i], quoted(labels[i]), values[i], context);
    if (!answer) return answer.error();
    answers[i] = std::move(answer).value();
  }
  return answers;
}

}  // namespace quorlo
