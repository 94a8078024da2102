#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/interruption.h"
#include "cli/library/backup_text.h"
#include "cli/library/library_access.h"
#include "cli/local_date.h"
#include "import/work_progress.h"
#include "platform/environment/environment.h"
#include "store/backup/backup_folder.h"
#include "store/sqlite/file/store_files.h"
#include "store/sqlite/file/store_opening.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

struct BackupArguments {
  std::optional<std::string> file;
  bool replaces = false;
  bool lists = false;
};

Result<std::unique_ptr<SqliteDatabase>> openLibraryFile(const CommandSession& session) {
  if (libraryIsMissing(session.environment())) {
    return Error{"There is no library yet, so there is nothing to back up."};
  }
  return openStoreToRead(session.environment().dataDirectory(), {.now = session.environment().now()});
}

bool isPartOfStore(const fs::path& file, const fs::path& store) {
  std::error_code failure;
  if (fs::equivalent(file, store, failure)) return true;
  return std::ranges::any_of(kStoreSideFileSuffixes, [&](auto suffix) {
    return fs::equivalent(file, storeSideFile(store, suffix), failure);
  });
}

// Where the copy goes: into a folder under a name with the date, over a link into the file that it leads to.
Result<fs::path> destination(const CommandSession& session, const BackupArguments& arguments,
                             const fs::path& store) {
  std::error_code failure;
  auto file = fs::absolute(*arguments.file, failure);
  if (fs::is_directory(file, failure)) {
    file /= "quorlo-" + localDate(session.environment().now()).substr(0, 10) + ".sqlite";
  }
  if (const auto target = fs::weakly_canonical(file, failure); !failure) file = target;
  if (isMissing(file)) return file;
  if (isPartOfStore(file, store)) return Error{"\"" + file.string() + "\" is the library itself."};
  if (!fs::is_regular_file(file, failure)) return Error{"\"" + file.string() + "\" is no file to replace."};
  if (!arguments.replaces) {
    return Error{"\"" + file.string() + "\" is there already. To replace it, add --replace."};
  }
  return file;
}

void print(CommandSession& session, const Backup& backup, const LibraryContents& contents, bool isNew) {
  if (session.json()) {
    auto document = backupJson(backup, contents);
    document["isNew"] = isNew;
    return session.printJson(document);
  }
  session.out().write(
      isNew ? fmt::format("Backed up {} to {}\n", snippetCount(contents.snippets), backup.file.string())
            : fmt::format("Nothing has changed since the backup of {}: {}\n", localDate(backup.date),
                          backup.file.string()));
}

Result<ExitStatus> backUpTo(CommandSession& session, const BackupArguments& arguments,
                            SqliteDatabase& library, const MayGoOn& mayGoOn) {
  const auto file = destination(session, arguments, library.file());
  if (!file) return file.error();
  const auto draft = file.value().string() + fmt::format(".new-{}", ::getpid());
  const auto contents = writeBackup(library, file.value(), draft, mayGoOn);
  if (!contents) return contents.error();
  std::error_code ignored;
  print(session,
        {.file = file.value(),
         .date = session.environment().now(),
         .bytes = fs::file_size(file.value(), ignored)},
        contents.value(), true);
  return ExitStatus::done;
}

Result<ExitStatus> addToFolder(CommandSession& session, SqliteDatabase& library, const MayGoOn& mayGoOn) {
  const auto folder = BackupFolder::of(session.environment().dataDirectory());
  const auto added = folder.add(library, session.environment().now(), mayGoOn);
  if (!added) return added.error();
  print(session, added.value().backup, added.value().contents, added.value().isNew);
  return ExitStatus::done;
}

Result<ExitStatus> backUp(CommandSession& session, const BackupArguments& arguments) {
  const auto library = openLibraryFile(session);
  if (!library) return library.error();
  WorkProgress progress;
  const CancelledByInterrupt interruptible(progress);
  const auto mayGoOn = [&progress] { return !progress.isCancelled(); };
  auto result = !arguments.file ? addToFolder(session, *library.value(), mayGoOn)
                                : backUpTo(session, arguments, *library.value(), mayGoOn);
  if (result || !progress.isCancelled()) return result;
  session.note("Interrupted. No backup was made.");
  return ExitStatus::interrupted;
}

Result<ExitStatus> list(CommandSession& session) {
  const auto folder = BackupFolder::of(session.environment().dataDirectory());
  const auto backups = folder.backups();
  if (session.json()) {
    session.printJson(backupsJson(folder, backups));
  } else {
    for (const auto& each : backups) session.out().write(backupLine(each) + "\n");
    if (backups.empty()) session.note("There is no backup yet. \"quorlo backup\" makes one.");
  }
  return ExitStatus::done;
}

}  // namespace

void addBackupCommand(CommandParser& parser) {
  const auto arguments = std::make_shared<BackupArguments>();
  auto& command =
      parser.add("backup", "Keep a copy of the whole library", [arguments](CommandSession& session) {
        return arguments->lists ? list(session) : backUp(session, *arguments);
      });
  const auto& file = command.addFile(
      "file", arguments->file,
      "The file, or a folder for a file named by the date; without it one of the rolling copies");
  command.addFlag("--replace", arguments->replaces, "Replace the file if it is there");
  command.addFlag("-l,--list", arguments->lists, "List the rolling copies, the newest first").excludes(file);
  command.setFooter(
      "A backup holds everything: snippets with their rich texts, dates and use counts, the trash, folders, "
      "rules and statistics. Quorlo makes one by itself on each day on which something was changed, and keeps "
      "the last 10 in the folder \"backups\" beside the library. \"quorlo restore\" takes a library back.\n\n"
      "  quorlo backup\n"
      "  quorlo backup /media/stick/quorlo.sqlite\n"
      "  quorlo backup --list");
}

}  // namespace quorlo
