#include "cli/library/backup_text.h"

#include "base/iso_date.h"
#include "cli/local_date.h"
#include "store/backup/backup_folder.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace quorlo {
namespace {

std::string sizeText(std::uintmax_t bytes) {
  constexpr double kKilo = 1000;
  const auto size = static_cast<double>(bytes);
  if (size < kKilo * kKilo) return fmt::format("{:.0f} kB", size / kKilo);
  if (size < kKilo * kKilo * kKilo) return fmt::format("{:.1f} MB", size / kKilo / kKilo);
  return fmt::format("{:.1f} GB", size / kKilo / kKilo / kKilo);
}

nlohmann::ordered_json toJson(const Backup& backup) {
  return {{"file", backup.file.string()}, {"date", isoDate(backup.date)}, {"bytes", backup.bytes}};
}

}  // namespace

std::string snippetCount(std::int64_t count) {
  return count == 1 ? "1 snippet" : fmt::format("{} snippets", count);
}

std::string backupLine(const Backup& backup) {
  const auto contents = readBackup(backup.file);
  return fmt::format("{}  {:>14}  {:>9}  {}", localDateAndTime(backup.date),
                     contents ? snippetCount(contents.value().snippets) : "not readable",
                     sizeText(backup.bytes), backup.file.string());
}

nlohmann::ordered_json backupJson(const Backup& backup, const LibraryContents& contents) {
  auto document = toJson(backup);
  document["snippets"] = contents.snippets;
  return document;
}

nlohmann::ordered_json backupsJson(const BackupFolder& folder, const std::vector<Backup>& backups) {
  auto list = nlohmann::ordered_json::array();
  for (const auto& each : backups) {
    const auto contents = readBackup(each.file);
    list.push_back(contents ? backupJson(each, contents.value()) : toJson(each));
    if (contents) continue;
    list.back()["snippets"] = nullptr;
    list.back()["error"] = contents.error().message;
  }
  return {{"folder", folder.path().string()}, {"backups", std::move(list)}};
}

}  // namespace quorlo
