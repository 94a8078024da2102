#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/expanding/expand_answers.h"
#include "cli/expanding/expand_output.h"
#include "cli/expanding/expand_text.h"
#include "cli/library/snippet_names.h"
#include "cli/terminal_text.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"
#include "text/html_writer.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <utility>

namespace quorlo {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kQuotedColumns = 60;

struct ExpandOptions {
  std::optional<std::string> snippet;
  std::vector<std::string> answers;
  std::optional<std::string> clipboard;
  bool html = false;
  bool strict = false;
};

// Opened when the first snippet is looked for: a text that names none needs no library.
class Library {
 public:
  explicit Library(CommandSession& session) : session_(session) {}

  Result<ManagedObjectContext*> open() {
    if (!context_) context_ = session_.openLibrary();
    if (!*context_) return context_->error();
    return context_->value().get();
  }

  // A live snippet before others.
  std::optional<AttributedString> textFor(const std::u16string& abbreviation) {
    const auto context = open();
    if (!context) return std::nullopt;
    if (const auto live = context.value()->liveSnippet(abbreviation); live && live.value()) {
      return live.value()->text();
    }
    const auto others = context.value()->fetch<QLSnippet>(
        {.predicate = QLSnippet::kAbbreviation.equals(abbreviation), .fetchLimit = 1});
    if (!others || others.value().empty()) return std::nullopt;
    return others.value().front()->text();
  }

  // Of a library that could not be opened.
  Status status() const { return context_ && !*context_ ? Status(context_->error()) : Status(); }

 private:
  CommandSession& session_;
  std::optional<Result<std::unique_ptr<ManagedObjectContext>>> context_;
};

Status readSource(CommandSession& session, Library& library, const ExpandOptions& options,
                  ExpansionRequest& request) {
  if (options.snippet && *options.snippet != "-") {
    const auto context = library.open();
    if (!context) return context.error();
    const auto found = snippetNamed(*context.value(), toUtf16(*options.snippet), Among::library);
    if (!found) return found.error();
    request.text = found.value()->text();
    request.abbreviation = found.value()->abbreviation();
    return {};
  }
  const auto input = session.readInput();
  if (!input) return input.error();
  auto text = toUtf16Strict(input.value());
  if (!text) return Error{"Standard input is no text in UTF-8: " + text.error().message};
  request.text = AttributedString(std::move(text).value());
  return {};
}

std::string inWords(const LeftOutSnippet& leftOut) {
  const auto abbreviation =
      "\"" + cutToWidth(printable(toUtf8(leftOut.abbreviation), LineBreaks::shown), kQuotedColumns) + "\"";
  switch (leftOut.reason) {
    case LeftOutSnippet::Reason::missing:
      return "No snippet has the abbreviation " + abbreviation + "; nothing stands in its place.";
    case LeftOutSnippet::Reason::wouldContainItself:
      return "The snippet " + abbreviation + " is left out where it would stand within itself.";
    case LeftOutSnippet::Reason::textIsTooLong:
      return "The text has become too long; the snippet " + abbreviation + " is left out.";
    case LeftOutSnippet::Reason::isTooDeep:
      break;
  }
  return "The snippet " + abbreviation + " is nested too deep; its macro stays in the text.";
}

// What is not in the output as the snippet means it.
std::vector<std::string> openQuestions(const Expansion& expansion) {
  std::vector<std::string> open;
  if (const auto fields = expansion.unanswered(); !fields.empty()) {
    std::string line = "Not answered, so the defaults stand:";
    for (const auto field : fields) line += "\n  " + describeField(expansion.fields, field);
    open.push_back(line);
  }
  if (expansion.wantsClipboard()) {
    open.emplace_back("The clipboard is left out; give its contents with --clipboard TEXT.");
  }
  for (const auto& each : expansion.leftOut) open.push_back(inWords(each));
  return open;
}

Json fieldJson(const Expansion& expansion, std::size_t number) {
  const auto& field = expansion.fields[number];
  Json json{{"name", toUtf8(fieldLabel(expansion.fields, number))},
            {"type", toUtf8(rawValue(field.type))},
            {"answered", expansion.answers[number].has_value()}};
  if (field.type == MacroType::textField) json["default"] = toUtf8(field.defaultText);
  if (field.type == MacroType::options) {
    const auto& [entries, defaultEntry, multiple, choiceType, separator] = field.options;
    if (!entries.empty()) json["default"] = toUtf8(entries[defaultEntry]);
    json["multiple"] = multiple;
    json["choices"] = Json::array();
    for (const auto& entry : entries) json["choices"].push_back(toUtf8(entry));
  }
  return json;
}

Json expansionJson(const Expansion& expansion, const ExpandedText& whole) {
  Json json{{"text", plainForm(whole.text)}};
  if (!whole.text.isPlain()) json["html"] = toHtml(whole.text);
  json["pieces"] = piecesJson(expansion.prepared);
  json["fields"] = Json::array();
  for (std::size_t i = 0; i < expansion.fields.size(); ++i) json["fields"].push_back(fieldJson(expansion, i));
  return json;
}

void noteWhatIsLeftOut(CommandSession& session, const ExpandedText& whole) {
  std::string list;
  for (const auto& key : whole.leftOut) {
    if (key != "the clipboard") list += (list.empty() ? "" : ", ") + key;
  }
  if (!list.empty())
    session.note("A text cannot hold these, so they are left out (--json has them): " + list);
}

void print(CommandSession& session, const ExpandedText& whole, bool asHtml) {
  auto& out = session.out();
  const auto text = asHtml ? toHtml(whole.text) : plainForm(whole.text);
  // A terminal would obey control characters, and leave its prompt behind the last line.
  out.write(out.isTerminal() ? printable(text, LineBreaks::kept) : text);
  if (out.isTerminal() && !text.ends_with('\n')) out.write("\n");
}

Result<ExitStatus> expand(CommandSession& session, const ExpandOptions& options) {
  if (!options.snippet && session.canAsk()) {
    session.note(
        "Name a snippet, or give a text on standard input; \"-\" reads one that you type, to Ctrl-D.");
    return ExitStatus::wrongUsage;
  }
  Library library(session);
  ExpansionRequest request{{}, {}, options.answers, options.clipboard};
  if (const auto read = readSource(session, library, options, request); !read) return read.error();
  const QLSnippetMacroInterpreter interpreter(
      session.environment(),
      [&library](const std::u16string& abbreviation) { return library.textFor(abbreviation); });
  const auto expansion = expandText(interpreter, request);
  if (const auto opened = library.status(); !opened) return opened.error();
  if (!expansion) return expansion.error();

  const auto open = openQuestions(expansion.value());
  for (const auto& line : open) session.note(line);
  if (options.strict && !open.empty()) return ExitStatus::failed;
  const auto whole = inOneText(expansion.value().prepared);
  if (session.json()) {
    session.printJson(expansionJson(expansion.value(), whole));
  } else {
    noteWhatIsLeftOut(session, whole);
    print(session, whole, options.html);
  }
  return ExitStatus::done;
}

}  // namespace

void addExpandCommand(CommandParser& parser) {
  const auto options = std::make_shared<ExpandOptions>();
  auto& command = parser.add("expand", "Evaluate the macros of a snippet, or of a text on standard input",
                             [options](CommandSession& session) { return expand(session, *options); });
  command.addText("snippet", options->snippet,
                  std::string(kSnippetNameHelp) + "; \"-\" or nothing for standard input", "SNIPPET");
  command.addTexts("-a,--answer", options->answers,
                   "Fill in a field; once more for each other one, and for each of several choices",
                   "NAME=VALUE");
  command.addText("--clipboard", options->clipboard, "What the clipboard holds; the desktop's is not read");
  command.addFlag("--html", options->html, "Print the text as HTML, with its styles and pictures");
  command.addFlag("--strict", options->strict,
                  "Print nothing and fail where something is left open or left out");
  command.setFooter(
      "No window opens, and the snippet does not count as used. Fields without an answer take their defaults, "
      "and standard error names them; a field without a name is called by its place, \"#1\" and so on. Dates "
      "are written like 2026-11-22 or 2026-11-22T14:30.\n\n"
      "The keys return, tab and space become characters. Other keys and the place of the cursor are in the "
      "pieces that --json prints.\n\n"
      "Examples:\n"
      "  quorlo expand sig\n"
      "  quorlo expand letter --answer Name=Ada --answer Greeting=Dear\n"
      "  echo 'Today is %date:dateLength=full:timeLength=none:date%' | quorlo expand");
}

}  // namespace quorlo
