#pragma once

#include "macros/dates/moment.h"
#include "macros/fill_in_macros.h"
#include "macros/find_macros.h"
#include "text/attributed_string.h"
#include "text/text_range.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

class DateAndTimeFormatter;

// What the preview shows of the macros that ask nothing.
struct FillInPreview {
  bool clipboardContent = false;  // else a placeholder
  bool allMacros = false;         // dates as they will read, keys and the cursor by name; else short signs
};

// The fields of a snippet while the user fills them in: the answers so far, defaults first, and how the
// snippet will read. Holds texts, not the snippet, which may be deleted meanwhile.
class FillInSession {
 public:
  // `text` has its nested snippets resolved, `fields` are its questions. The formatter must outlive the
  // session.
  FillInSession(AttributedString text, std::vector<FillInField> fields, FillInPreview preview, Moment now,
                DateAndTimeFormatter& formatter);

  const AttributedString& snippetText() const { return text_; }
  const std::vector<FillInField>& fields() const { return fields_; }

  // Of a text field.
  std::u16string text(std::size_t field) const;
  void setText(std::size_t field, std::u16string text);

  // Of options: indices of its entries, ascending.
  std::vector<std::size_t> chosen(std::size_t field) const;
  void choose(std::size_t field, const std::vector<std::size_t>& entries);

  // Of a date: what the macro asks for until one is picked.
  Moment date(std::size_t field) const;
  void pick(std::size_t field, Moment date);

  // A date that was not picked has none, so that it is that of the insertion.
  const FillInAnswers& answers() const { return answers_; }

  // The clipboard is read only where the preview would show it.
  bool showsClipboard() const;
  void setClipboard(AttributedString content) { clipboard_ = std::move(content); }

  // The beginning of the snippet as it will read.
  struct Reading {
    struct Place {
      TextRange range;
      std::size_t field;
    };
    AttributedString text;
    std::vector<Place> places;  // where the answers stand, in text order
  };
  // Cut after `longest` UTF-16 units.
  Reading preview(std::size_t longest) const;

 private:
  void appendMacro(AttributedString& to, std::size_t macro) const;
  std::u16string answerText(std::size_t field, std::u16string_view macroString) const;

  AttributedString text_;
  std::vector<FillInField> fields_;
  FillInPreview preview_;
  Moment now_;
  DateAndTimeFormatter& formatter_;
  std::vector<MacroOccurrence> macros_;
  std::vector<std::optional<std::size_t>> fieldOfMacro_;
  std::vector<std::vector<std::size_t>> chosen_;  // by field
  FillInAnswers answers_;
  std::optional<AttributedString> clipboard_;
};

}  // namespace quorlo
