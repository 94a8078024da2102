#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/commands/csv_arguments.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/importing/import_output.h"
#include "cli/interruption.h"
#include "cli/library/folder_names.h"
#include "cli/library/spooled_input.h"
#include "import/file_import.h"
#include "import/import_file_kind.h"
#include "import/last_import.h"
#include "import/snippet_importer.h"
#include "import/work_progress.h"
#include "platform/environment/environment.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_category.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quorlo {
namespace {

struct ImportArguments {
  std::vector<std::string> files;
  CsvArguments csv;
  std::optional<std::string> folder;
  std::string inputFormat;
  bool keepsDuplicates = false;
  bool isDryRun = false;
  bool undoes = false;
};

using Files = std::vector<std::filesystem::path>;

// All tables are read alike: as the first one asks for.
Result<CsvMapping> mapping(const ImportArguments& arguments, const Files& files, WorkProgress& progress) {
  const auto table = std::ranges::find_if(
      files, [](const auto& each) { return importFileKind(each) == ImportFileKind::csv; });
  return csvMapping(arguments.csv, table == files.end() ? files.front() : *table, progress);
}

// A folder that is there may be named by its uuid and in other letters than its own.
Result<ImportOptions> importOptions(const ImportArguments& arguments, const ManagedObjectContext& library) {
  ImportOptions options{{}, !arguments.keepsDuplicates, arguments.isDryRun};
  if (!arguments.folder) return options;
  const auto folder = ownFolderNamed(library, *arguments.folder);
  if (!folder) return folder.error();
  if (folder.value()) {
    options.destination = ImportIntoFolder{folder.value()->uuid()};
  } else {
    options.destination = ImportIntoTitled{toUtf16(*arguments.folder)};
  }
  return options;
}

Result<ImportReport> import(const ImportArguments& arguments, const Files& files,
                            ManagedObjectContext& library, WorkProgress& progress) {
  const auto options = importOptions(arguments, library);
  if (!options) return options.error();
  const auto columns = mapping(arguments, files, progress);
  if (!columns) return columns.error();
  if (files.size() == 1) return importFile(files[0], columns.value(), options.value(), library, progress);
  return importFiles(files, columns.value(), options.value(), library, progress);
}

// Standard input for "-", which may be read but once.
Result<Files> filesOf(CommandSession& session, const ImportArguments& arguments, SpooledInput& input) {
  Files files;
  for (const auto& each : arguments.files) {
    if (each != "-") {
      files.emplace_back(each);
      continue;
    }
    const auto spooled = input.read(session, arguments.inputFormat);
    if (!spooled) return spooled.error();
    files.push_back(spooled.value());
  }
  return files;
}

Result<ExitStatus> undoLast(CommandSession& session) {
  const auto folder = session.environment().dataDirectory();
  const auto report = lastImport(folder);
  if (!report) return report.error();
  const auto library = session.openLibrary(LibraryUse::changing);
  if (!library) return library.error();
  WorkProgress progress;
  const CancelledByInterrupt interruptible(progress);
  const auto undone = undoImport(report.value(), *library.value(), progress);
  if (!undone && progress.isCancelled()) {
    session.note("Interrupted. Nothing was changed.");
    return ExitStatus::interrupted;
  }
  if (!undone) return undone.error();
  forgetImport(folder);
  if (session.json()) {
    session.printJson({{"removed", undone.value().removedSnippets},
                       {"kept", undone.value().keptSnippets},
                       {"removedFolders", undone.value().removedFolders}});
  } else {
    session.out().write(toUtf8(summary(undone.value())) + "\n");
  }
  return ExitStatus::done;
}

Result<ExitStatus> importAndReport(CommandSession& session, const ImportArguments& arguments) {
  if (arguments.undoes) return undoLast(session);
  if (arguments.files.empty()) {
    session.note("Name the files to import; - is standard input.");
    return ExitStatus::wrongUsage;
  }
  SpooledInput input;
  const auto files = filesOf(session, arguments, input);
  if (!files) return files.error();
  const auto library = arguments.isDryRun ? session.openLibrary() : session.beginLibrary();
  if (!library) return library.error();
  WorkProgress progress;
  const CancelledByInterrupt interruptible(progress);
  const auto report = import(arguments, files.value(), *library.value(), progress);
  if (!report && progress.isCancelled()) {
    session.note("Interrupted. Nothing was imported.");
    return ExitStatus::interrupted;
  }
  if (!report) return report.error();
  if (const auto status = rememberImport(report.value(), session.environment().dataDirectory()); !status) {
    session.note("This import cannot be undone: " + status.error().message);
  }
  printImport(session, report.value());
  return report.value().refusedFiles.empty() ? ExitStatus::done : ExitStatus::failed;
}

}  // namespace

void addImportCommand(CommandParser& parser) {
  const auto arguments = std::make_shared<ImportArguments>();
  auto& command =
      parser.add("import", "Take the snippets of files into the library",
                 [arguments](CommandSession& session) { return importAndReport(session, *arguments); });
  const auto& files = command.addFiles(
      "files", arguments->files,
      "Tables (.csv, .tsv, .txt), Quorlo's own exports (.quorlo, .json), and files of the types "
      "textexpander, textexpanderbackup, typeit4me and textclipping; - for standard input");
  command.addChoice("--format", arguments->inputFormat, {"csv", "json"},
                    "What standard input is; by its content without this option");
  command.addText("-f,--folder", arguments->folder, "Into this folder, made if there is none of the name",
                  "FOLDER");
  command.addFlag("--keep-duplicates", arguments->keepsDuplicates,
                  "Import also what is in the library with the same title and text");
  command.addFlag("-n,--dry-run", arguments->isDryRun, "Only report what would be imported");
  command
      .addFlag("--undo", arguments->undoes,
               "Take the last import back, also one by the window; what was changed or used since stays")
      .excludes(files);
  addCsvArguments(command, arguments->csv);
  command.setFooter(
      "All of it is imported or nothing: an error and Ctrl-C leave the library as it was. The result goes to "
      "standard output, what could not be kept as it was to standard error. Of several files the readable "
      "ones are imported; the exit status is 1 when one was refused.\n\n"
      "Columns that are not named are guessed by their names, or by their order; once one is named, only "
      "those named are used. Where a guess may leave out texts, nothing is imported until the columns are named. "
      "Standard error says which column was taken for what, and the lines of which something was left out. How "
      "a table is written: quorlo help tables\n\n"
      "What an export of Quorlo holds and the library has is left as it is there; what lies in the trash is taken "
      "out of it.\n\n"
      "  quorlo import snippets.csv --dry-run\n"
      "  quorlo import old.csv --separator semicolon --abbreviation 1 --text 3 --folder Old");
}

}  // namespace quorlo
