#include "base/counted.h"
#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/interruption.h"
#include "cli/library/folder_names.h"
#include "cli/library/library_access.h"
#include "cli/library/snippet_names.h"
#include "import/export/export_library.h"
#include "import/work_progress.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

namespace quorlo {
namespace {

struct ExportArguments {
  std::optional<std::string> fileName;
  std::string format;
  std::optional<std::string> folder;
  std::vector<std::string> snippets;

  std::string file() const { return fileName.value_or("-"); }
  bool isToOutput() const { return file() == "-"; }
};

std::optional<ExportFormat> formatOf(const ExportArguments& arguments) {
  if (arguments.format == "csv") return ExportFormat::csv;
  if (arguments.format == "json" || arguments.isToOutput()) return ExportFormat::json;
  return exportFormat(arguments.file());
}

Result<ExportSelection> selection(const ExportArguments& arguments, const ManagedObjectContext& library) {
  if (arguments.folder) {
    const auto folder = folderNamed(library, *arguments.folder);
    if (!folder) return folder.error();
    return ExportSelection(OneFolder{folder.value()->uuid()});
  }
  if (arguments.snippets.empty()) return ExportSelection(WholeLibrary{});
  const auto snippets = snippetsNamed(library, arguments.snippets, Among::library);
  if (!snippets) return snippets.error();
  ChosenSnippets chosen;
  for (const auto& each : snippets.value()) chosen.uuids.push_back(each->uuid());
  return ExportSelection(std::move(chosen));
}

nlohmann::ordered_json toJson(const ExportArguments& arguments, const ExportReport& report) {
  auto warnings = nlohmann::ordered_json::array();
  for (const auto& each : report.warnings) {
    warnings.push_back({{"snippet", toUtf8(each.snippet)}, {"message", toUtf8(each.message)}});
  }
  return {{"file", arguments.file()},
          {"snippets", report.snippets},
          {"folders", report.folders},
          {"warnings", std::move(warnings)}};
}

void print(CommandSession& session, const ExportArguments& arguments, const ExportReport& report) {
  if (session.json()) return session.printJson(toJson(arguments, report));
  for (const auto& [snippet, message] : report.warnings) {
    session.note(snippet.empty() ? toUtf8(message) : toUtf8(snippet) + ": " + toUtf8(message));
  }
  if (arguments.isToOutput()) return;
  session.out().write(
      fmt::format("Exported {} to {}\n", counted(report.snippets, "snippet", "snippets"), arguments.file()));
}

Result<ExitStatus> exportAndReport(CommandSession& session, const ExportArguments& arguments) {
  const auto format = formatOf(arguments);
  if (!format) {
    session.note("The ending of \"" + arguments.file() +
                 "\" names no format: add --format json or --format csv.");
    return ExitStatus::wrongUsage;
  }
  if (session.json() && arguments.isToOutput()) {
    session.note("With --json the report goes to standard output: name a file for the export.");
    return ExitStatus::wrongUsage;
  }
  // An earlier export is worth more than an empty document.
  if (libraryIsMissing(session.environment())) {
    return Error{"There is no library yet, so nothing was exported."};
  }
  const auto library = session.openLibrary();
  if (!library) return library.error();
  const auto chosen = selection(arguments, *library.value());
  if (!chosen) return chosen.error();

  WorkProgress progress;
  const CancelledByInterrupt interruptible(progress);
  const auto report =
      arguments.isToOutput()
          ? exportToDescriptor(*library.value(), chosen.value(), *format, STDOUT_FILENO, progress)
          : exportToFile(*library.value(), chosen.value(), *format, arguments.file(), progress);
  if (!report && progress.isCancelled()) {
    session.note("Interrupted. The export is not complete.");
    return ExitStatus::interrupted;
  }
  if (!report) return report.error();
  print(session, arguments, report.value());
  return ExitStatus::done;
}

}  // namespace

void addExportCommand(CommandParser& parser) {
  const auto arguments = std::make_shared<ExportArguments>();
  auto& command =
      parser.add("export", "Write the library, or a part of it, to a file",
                 [arguments](CommandSession& session) { return exportAndReport(session, *arguments); });
  command.addFile("file", arguments->fileName,
                  "The file, which is replaced if it is there; - or none for standard output");
  command.addChoice(
      "--format", arguments->format, {"json", "csv"},
      "By the file's ending (.json, .quorlo; .csv) without this option, json for standard output");
  const auto& folder = command.addText("-f,--folder", arguments->folder, "Only this folder", "FOLDER");
  command
      .addTexts("-s,--snippet", arguments->snippets, "Only this snippet; may be given several times",
                "SNIPPET")
      .excludes(folder);
  command.setFooter(
      "JSON holds the snippets with their texts, formats and pictures, the folders with their rules and hot keys, "
      "and the excluded applications. Use counts, dates, statistics, the trash and the applications of single "
      "snippets are left out: a full copy of the library is made by quorlo backup. A table holds titles, "
      "abbreviations and plain texts; what it cannot hold is named on standard error.\n\n"
      "  quorlo export library.json\n"
      "  quorlo export --folder Letters --format csv > letters.csv");
}

}  // namespace quorlo
