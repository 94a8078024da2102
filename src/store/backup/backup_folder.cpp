#include "store/backup/backup_folder.h"

#include "base/log.h"
#include "store/sqlite/file/store_files.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "backup-";
constexpr std::string_view kEnding = ".sqlite";
constexpr std::string_view kDraftEnding = ".sqlite.new";

// Takes a number of so many digits off the front, or as many as there are for 0.
std::optional<int> takeNumber(std::string_view& text, std::size_t digits) {
  int value = 0;
  const auto* const end = text.data() + (digits == 0 ? text.size() : std::min(digits, text.size()));
  const auto read = std::from_chars(text.data(), end, value);
  const auto length = static_cast<std::size_t>(read.ptr - text.data());
  if (read.ec != std::errc() || value < 0 || (digits != 0 && length != digits)) return std::nullopt;
  text.remove_prefix(length);
  return value;
}

bool take(std::string_view& text, std::string_view expected) {
  if (!text.starts_with(expected)) return false;
  text.remove_prefix(expected.size());
  return true;
}

std::optional<Date> takeMoment(std::string_view& text) {
  const auto year = takeNumber(text, 4);
  const auto month = takeNumber(text, 2);
  const auto day = takeNumber(text, 2);
  if (!take(text, "T")) return std::nullopt;
  const auto hour = takeNumber(text, 2);
  const auto minute = takeNumber(text, 2);
  const auto second = takeNumber(text, 2);
  if (!year || !month || !day || !hour || !minute || !second || !take(text, "Z")) return std::nullopt;
  constexpr int kLastYear = 2261;  // that Date reaches
  const std::chrono::year_month_day date{std::chrono::year(*year),
                                         std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day))};
  if (!date.ok() || *year > kLastYear || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
  return std::chrono::sys_days(date) + std::chrono::hours(*hour) + std::chrono::minutes(*minute) +
         std::chrono::seconds(*second);
}

// Only under the lock: another process may be writing one.
void removeStrayDrafts(const fs::path& folder) {
  std::vector<fs::path> drafts;
  std::error_code failure;
  for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
       entry.increment(failure)) {
    const auto name = entry->path().filename().string();
    const auto ending = name.find(kDraftEnding);
    if (name.starts_with(kPrefix) && ending != std::string::npos) {
      drafts.push_back(folder / name.substr(0, ending + kDraftEnding.size()));
    }
  }
  for (const auto& each : drafts) removeDraft(each);
}

void removeOldest(const BackupFolder& folder) {
  const auto backups = folder.backups();
  for (std::size_t i = BackupFolder::kKept; i < backups.size(); ++i) {
    std::error_code failure;
    fs::remove(backups[i].file, failure);
    if (failure) {
      logWarning("WARNING: #bKp2old - The backup \"" + backups[i].file.string() +
                 "\" cannot be removed: " + failure.message());
    }
  }
}

Status makeFolder(const fs::path& folder) {
  if (auto status = makePrivateDirectory(folder); !status) {
    return Error{"The folder for backups could not be made; " + status.error().message};
  }
  std::error_code ignored;
  fs::permissions(folder, fs::perms::group_all | fs::perms::others_all, fs::perm_options::remove, ignored);
  return {};
}

}  // namespace

std::string backupName(int number, Date date) {
  const auto moment = fmt::gmtime(std::chrono::system_clock::to_time_t(date));
  return fmt::format("{}{:04}-{:%Y%m%dT%H%M%SZ}{}", kPrefix, number, moment, kEnding);
}

std::optional<Backup> readBackupName(std::string_view name) {
  if (!take(name, kPrefix)) return std::nullopt;
  const auto number = takeNumber(name, 0);
  if (!number || !take(name, "-")) return std::nullopt;
  const auto date = takeMoment(name);
  if (!date || name != kEnding) return std::nullopt;
  return Backup{.file = {}, .number = *number, .date = *date};
}

BackupFolder BackupFolder::of(const fs::path& dataDirectory) {
  return BackupFolder(dataDirectory / "backups");
}

std::vector<Backup> BackupFolder::backups() const {
  std::vector<Backup> found;
  std::error_code failure;
  for (fs::directory_iterator entry(folder_, failure), end; !failure && entry != end;
       entry.increment(failure)) {
    auto backup = readBackupName(entry->path().filename().string());
    if (!backup) continue;
    std::error_code gone;
    backup->file = entry->path();
    backup->bytes = entry->file_size(gone);
    if (!gone) found.push_back(std::move(*backup));
  }
  std::ranges::sort(found, std::greater(),
                    [](const Backup& each) { return std::pair(each.number, each.date); });
  return found;
}

Result<BackupFolder::Addition> BackupFolder::add(SqliteDatabase& library, Date now,
                                                 const MayGoOn& mayGoOn) const {
  if (auto status = makeFolder(folder_); !status) return status.error();
  const DirectoryLock lock(folder_);
  removeStrayDrafts(folder_);

  const auto present = libraryContents(library);
  if (!present) return present.error();
  const auto earlier = backups();
  if (!earlier.empty()) {
    const auto newest = readBackup(earlier.front().file);
    if (newest && newest.value().state == present.value().state) {
      return Addition{earlier.front(), newest.value(), false};
    }
  }
  const auto number = earlier.empty() ? 1 : earlier.front().number + 1;
  const auto file = folder_ / backupName(number, now);
  const auto contents = writeBackup(library, file, file.string() + ".new", mayGoOn);
  if (!contents) return contents.error();
  removeOldest(*this);
  std::error_code ignored;
  return Addition{
      Backup{file, number, std::chrono::floor<std::chrono::seconds>(now), fs::file_size(file, ignored)},
      contents.value()};
}

}  // namespace quorlo
