#include "cli/library/snippet_text_source.h"

#include "cli/command_session.h"
#include "cli/definition/command_definition.h"
#include "import/file_bytes.h"
#include "import/work_progress.h"
#include "text/attributed_string.h"
#include "text/line_breaks.h"
#include "text/utf.h"

#include <utility>

namespace quorlo {
namespace {

Result<std::u16string> decoded(std::string bytes, const std::string& where) {
  if (bytes.find('\0') != std::string::npos) {
    return Error{where + " holds a NUL character. A snippet can only hold text."};
  }
  if (bytes.ends_with('\n')) bytes.pop_back();
  if (bytes.ends_with('\r')) bytes.pop_back();
  auto text = toUtf16Strict(bytes);
  if (!text) return Error{where + " is not a text in UTF-8: " + text.error().message};
  return text;
}

Result<std::u16string> read(CommandSession& session, const SnippetTextSource& source) {
  if (source.file) {
    WorkProgress progress;
    auto bytes = readFileBytes(*source.file, progress);
    if (!bytes) return bytes.error();
    return decoded(std::move(bytes).value(), "\"" + *source.file + "\"");
  }
  if (*source.text != "-") return toUtf16(*source.text);
  auto bytes = session.readInput();
  if (!bytes) return bytes.error();
  return decoded(std::move(bytes).value(), "Standard input");
}

}  // namespace

void addTextSource(CommandDefinition& command, SnippetTextSource& source) {
  const auto& text = command.addText("-t,--text", source.text, "The text; - reads it from standard input");
  command.addFile("--file", source.file, "Read the text from this file").excludes(text);
}

Result<std::optional<std::u16string>> snippetText(CommandSession& session, const SnippetTextSource& source) {
  if (!source.isGiven()) return std::optional<std::u16string>();
  auto text = read(session, source);
  if (!text) return text.error();
  return std::optional(withLineFeeds(AttributedString(std::move(text).value())).string());
}

}  // namespace quorlo
