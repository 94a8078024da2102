#include "app/settings/insertion_settings.h"

#include "app/settings/stored_user_defaults.h"
#include "base/log.h"
#include "base/whole_file.h"
#include "platform/insertion/insertion_file.h"

#include <sys/stat.h>

#include <fstream>
#include <utility>

namespace quorlo {
namespace {

constexpr std::string_view kHeading =
    "# How applications take what Quorlo inserts; one line each: application = way\n"
    "# A way is: terminal | paste KEYS [KEYS...] | type | off, and may add: , pause SECONDS\n";

Result<std::string> textOf(const std::filesystem::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::string();
  std::ifstream file(path, std::ios::binary);
  std::string text(S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  if (!S_ISREG(status.st_mode) || !file.is_open() || file.bad()) {
    return Error{path.string() + " cannot be read. It has to be a file that you may read (chmod u+r)."};
  }
  return text;
}

}  // namespace

InsertionSettings::InsertionSettings(std::filesystem::path directory)
    : directory_(std::move(directory)),
      applications_(directory_ / "applications"),
      terminals_(directory_ / "terminals") {
  readAgain();
}

const InsertionTable& InsertionSettings::table() {
  if (std::pair(versionOf(applications_), versionOf(terminals_)) != versions_) readAgain();
  return table_;
}

const std::vector<InsertionEntry>& InsertionSettings::entries() {
  table();
  return entries_;
}

const std::vector<Error>& InsertionSettings::problems() {
  table();
  return problems_;
}

Status InsertionSettings::set(const InsertionEntry& entry) {
  const auto text = textOf(applications_);
  if (!text) return text.error();
  return write(withEntry(text.value().empty() ? kHeading : std::string_view(text.value()), entry));
}

Status InsertionSettings::remove(std::string_view application) {
  const auto text = textOf(applications_);
  if (!text) return text.error();
  return write(withoutEntry(text.value(), application));
}

InsertionSettings::Version InsertionSettings::versionOf(const std::filesystem::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return {};
  return {status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

void InsertionSettings::readAgain() {
  // Of files that change while they are read, the next call reads the rest.
  versions_ = {versionOf(applications_), versionOf(terminals_)};
  problems_.clear();
  entries_.clear();
  std::vector<InsertionEntry> all;
  if (const auto text = textOf(terminals_)) {
    all = readTerminalsFile(text.value());
  } else {
    problems_.push_back(text.error());
  }
  if (const auto text = textOf(applications_)) {
    auto file = readInsertionFile(text.value());
    entries_ = std::move(file.entries);
    for (const auto& each : file.problems) {
      problems_.push_back({applications_.string() + ", " + each.message});
    }
  } else {
    problems_.push_back(text.error());
  }
  for (const auto& each : problems_) logWarning("WARNING: #inS7ent - " + each.message);
  all.insert(all.end(), entries_.begin(), entries_.end());
  table_ = InsertionTable(all);
}

Status InsertionSettings::write(const std::string& text) {
  if (auto status = makeSettingsDirectory(directory_); !status) return status;
  auto status = writeWholeFile(applications_, text, 0600);
  readAgain();
  return status;
}

}  // namespace quorlo
