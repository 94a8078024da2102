#include "cli/commands/library_restore.h"

#include "base/iso_date.h"
#include "cli/command_session.h"
#include "cli/interruption.h"
#include "cli/library/backup_text.h"
#include "cli/local_date.h"
#include "import/work_progress.h"
#include "platform/environment/environment.h"
#include "store/backup/backup_folder.h"
#include "store/backup/restore_library.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kDatabaseMark = "SQLite format 3";

bool isDatabase(const fs::path& file) {
  std::error_code failure;
  if (!fs::is_regular_file(file, failure)) return false;
  std::array<char, kDatabaseMark.size()> beginning{};
  std::ifstream(file, std::ios::binary).read(beginning.data(), beginning.size());
  return std::string_view(beginning.data(), beginning.size()) == kDatabaseMark;
}

// A date alone means any time of that day, one without seconds any of that minute; one that says how far it
// is from UTC means that moment.
std::vector<Backup> madeOn(const std::string& date, std::vector<Backup> backups) {
  const auto parts = readIsoDateTime(date);
  auto local = date;
  std::ranges::replace(local, 'T', ' ');
  std::erase_if(backups, [&](const Backup& each) {
    if (!parts->offset) return !localDateAndTime(each.date).starts_with(local);
    return std::chrono::floor<std::chrono::seconds>(*readIsoDate(date)) != each.date;
  });
  return backups;
}

Error noneMadeOn(const std::string& date, bool areThereAny) {
  return {"There is no backup of " + date + ". " +
          (areThereAny ? "To see which there are: quorlo backup --list" : "Quorlo has kept none yet.")};
}

Result<fs::path> backupNamed(const BackupFolder& folder, const std::string& name) {
  if (isDatabase(name)) return fs::absolute(name);
  std::error_code failure;
  if (fs::exists(name, failure)) return Error{"\"" + name + "\" is no library of Quorlo."};
  if (!readIsoDateTime(name)) return Error{"There is no file \"" + name + "\"."};
  const auto all = folder.backups();
  const auto meant = madeOn(name, all);
  if (meant.empty()) return noneMadeOn(name, !all.empty());
  if (meant.size() == 1) return meant.front().file;
  auto message = fmt::format(
      "\"{}\" may be any of {} backups. Name one by its date and time, or its file:", name, meant.size());
  for (const auto& each : meant) message += "\n  " + backupLine(each);
  return Error{message};
}

bool agrees(CommandSession& session, const fs::path& backup, std::int64_t snippets) {
  session.note(fmt::format(
      "The whole library is replaced by {} with {}. What is in it now is kept as one more backup.",
      backup.string(), snippetCount(snippets)));
  return session.confirm("Restore?");
}

void print(CommandSession& session, const fs::path& backup, const RestoredLibrary& restored) {
  if (session.json()) {
    nlohmann::ordered_json document{{"restoredFrom", backup.string()},
                                    {"snippets", restored.contents.snippets}};
    if (restored.kept) document["keptAs"] = restored.kept->file.string();
    if (restored.rescued) document["damagedKeptAs"] = restored.rescued->string();
    return session.printJson(document);
  }
  session.out().write(
      fmt::format("Restored {} from {}\n", snippetCount(restored.contents.snippets), backup.string()));
  if (restored.kept)
    session.out().write("The former library is kept as " + restored.kept->file.string() + "\n");
  if (restored.rescued) {
    session.out().write("The former library was damaged. Its files are kept as " +
                        restored.rescued->string() + "\n");
  }
}

}  // namespace

bool namesLibrary(const std::string& name) {
  return readIsoDateTime(name).has_value() || isDatabase(name);
}

Result<ExitStatus> restoreLibrary(CommandSession& session, const std::string& name, bool isConfirmed) {
  const auto directory = session.environment().dataDirectory();
  const auto backup = backupNamed(BackupFolder::of(directory), name);
  if (!backup) return backup.error();
  const auto contents = readBackup(backup.value());
  if (!contents) return contents.error();
  if (!isConfirmed && !session.canAsk()) {
    session.note("To replace the library without being asked, add --yes.");
    return ExitStatus::wrongUsage;
  }
  if (!isConfirmed && !agrees(session, backup.value(), contents.value().snippets)) {
    return Error{"Nothing was restored."};
  }
  WorkProgress progress;
  const CancelledByInterrupt interruptible(progress);
  const auto restored = restoreLibrary(directory, backup.value(), session.environment().now(),
                                       [&progress] { return !progress.isCancelled(); });
  if (!restored && progress.isCancelled()) {
    session.note("Interrupted. Nothing was restored.");
    return ExitStatus::interrupted;
  }
  if (!restored) return restored.error();
  print(session, backup.value(), restored.value());
  return ExitStatus::done;
}

}  // namespace quorlo
