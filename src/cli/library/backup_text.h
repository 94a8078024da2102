#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace quorlo {

struct Backup;
struct LibraryContents;
class BackupFolder;

// "1 snippet", "2 snippets".
std::string snippetCount(std::int64_t count);

// Date, number of snippets, size and file; the file is opened for it.
std::string backupLine(const Backup& backup);

nlohmann::ordered_json backupJson(const Backup& backup, const LibraryContents& contents);
// Of a copy that cannot be read, "snippets" is null and "error" says why.
nlohmann::ordered_json backupsJson(const BackupFolder& folder, const std::vector<Backup>& backups);

}  // namespace quorlo
