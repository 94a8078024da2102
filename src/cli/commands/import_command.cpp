#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/commands/csv_arguments.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/importing/import_output.h"
#include "cli/interruption.h"
#include "cli/library/folder_names.h"
#include "import/file_import.h"
#include "import/import_file_kind.h"
#include "import/work_progress.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_category.h"
#include "text/utf.h"

#include <algorithm>

namespace quorlo {
namespace {

struct ImportArguments {
  std::vector<std::string> files;
  CsvArguments csv;
  std::optional<std::string> folder;
  bool skipsDuplicates = false;
  bool isDryRun = false;
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
  ImportOptions options{{}, arguments.skipsDuplicates, arguments.isDryRun};
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

Result<ImportReport> import(const ImportArguments& arguments, ManagedObjectContext& library,
                            WorkProgress& progress) {
  const Files files(arguments.files.begin(), arguments.files.end());
  const auto options = importOptions(arguments, library);
  if (!options) return options.error();
  const auto columns = mapping(arguments, files, progress);
  if (!columns) return columns.error();
  if (files.size() == 1) return importFile(files[0], columns.value(), options.value(), library, progress);
  return importFiles(files, columns.value(), options.value(), library, progress);
}

Result<ExitStatus> importAndReport(CommandSession& session, const ImportArguments& arguments) {
  const auto library = arguments.isDryRun ? session.openLibrary() : session.beginLibrary();
  if (!library) return library.error();
  WorkProgress progress;
  const CancelledByInterrupt interruptible(progress);
  const auto report = import(arguments, *library.value(), progress);
  if (!report && progress.isCancelled()) {
    session.note("Interrupted. Nothing was imported.");
    return ExitStatus::interrupted;
  }
  if (!report) return report.error();
  printImport(session, report.value());
  return report.value().refusedFiles.empty() ? ExitStatus::done : ExitStatus::failed;
}

}  // namespace

void addImportCommand(CommandParser& parser) {
  const auto arguments = std::make_shared<ImportArguments>();
  auto& command =
      parser.add("import", "Take the snippets of files into the library",
                 [arguments](CommandSession& session) { return importAndReport(session, *arguments); });
  command
      .addFiles("files", arguments->files,
                "Tables (.csv, .tsv, .txt), Quorlo's own exports (.quorlo, .json), and files of the types "
                "textexpander, textexpanderbackup, typeit4me and textclipping")
      .required();
  command.addText("-f,--folder", arguments->folder, "Into this folder, made if there is none of the name",
                  "FOLDER");
  command.addFlag("--skip-duplicates", arguments->skipsDuplicates,
                  "Leave out what is in the library with the same title and text");
  command.addFlag("-n,--dry-run", arguments->isDryRun, "Only report what would be imported");
  addCsvArguments(command, arguments->csv);
  command.setFooter(
      "All of it is imported or nothing: an error and Ctrl-C leave the library as it was. The result goes to "
      "standard output, what could not be kept as it was to standard error. Of several files the readable "
      "ones are imported; the exit status is 1 when one was refused.\n\n"
      "Columns that are not named are guessed by their names, or by their order; once one is named, only "
      "those named are used. Where a guess may leave out texts, nothing is imported until the columns are named. "
      "Standard error says which column was taken for what, and the lines of which something was left out.\n\n"
      "What an export of Quorlo holds and the library has is left as it is there; what lies in the trash is taken "
      "out of it.\n\n"
      "  quorlo import snippets.csv --dry-run\n"
      "  quorlo import old.csv --separator semicolon --abbreviation 1 --text 3 --folder Old");
}

}  // namespace quorlo
