#pragma once

#include "base/result.h"
#include "macros/fill_in_macros.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace quorlo {

struct DateContext;

// The questions of a snippet, answered on the command line.

// How a field is called there: by its name, or where it has none by its place among the fields: "#2".
std::u16string fieldLabel(std::span<const FillInField> fields, std::size_t field);

// A field and what may be answered, for people: "Size" (S, M or L).
std::string describeField(std::span<const FillInField> fields, std::size_t field);

// The answers that the texts NAME=VALUE give; fields that are not named have none. A value is
// - for a text field the text;
// - for options an entry, or its name once more for each of several, or several with commas between; nothing
//   for none of them;
// - for a date as ISO 8601 writes it, in the context's time zone where it names none.
// An error that says what there is to be answered where a name or a value is none of it.
Result<FillInAnswers> readAnswers(std::span<const FillInField> fields, std::span<const std::string> given,
                                  const DateContext& context);

}  // namespace quorlo
