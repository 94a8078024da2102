#include "store/exchange/library_exchange.h"

#include "store/exchange/library_exchange_reading.h"
#include "store/records/folder_types.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/uuid.h"
#include "text/json_reader.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace quorlo {

using nlohmann::json;
using nlohmann::ordered_json;

namespace {

constexpr std::int64_t kVersion = 1;

std::vector<std::string> bundleIDs(const RecordSet<QLApp>& apps) {
  std::vector<std::string> found;
  for (const auto* each : apps) {
    if (!each->bundleID().empty()) found.push_back(each->bundleID());
  }
  std::ranges::sort(found);
  return found;
}

std::string member(const std::string& place, std::size_t index) {
  return place + '[' + std::to_string(index) + ']';
}

template <class Visitor>
void elements(JsonReader& reader, const json& value, const std::string& place, Visitor visit) {
  if (!value.is_array()) return reader.fail(place, "is not a list.");
  for (std::size_t i = 0; i < value.size() && !reader.error(); ++i) visit(value[i], member(place, i));
}

std::vector<std::string> readIdentifiers(JsonReader& reader, const json& value, const std::string& place) {
  std::vector<std::string> found;
  elements(reader, value, place, [&](const json& each, const std::string& at) {
    found.push_back(reader.utf8(each, at));
    if (found.back().empty()) reader.fail(at, "is empty.");
  });
  return found;
}

std::int64_t readFolderType(JsonReader& reader, const json& value, const std::string& place) {
  const auto type = readInteger(reader, value, place);
  if (type != static_cast<std::int64_t>(CategoryType::Folder) &&
      type != static_cast<std::int64_t>(CategoryType::SharedFolder)) {
    reader.fail(place, "is no type of folder: use 0 (a folder) or 10 (a shared folder).");
  }
  return type;
}

std::int64_t readBehavior(JsonReader& reader, const json& value, const std::string& place) {
  const auto behavior = readInteger(reader, value, place);
  if (!expansionBehavior(behavior)) {
    reader.fail(place,
                "is no expansion behavior: use 0 (all applications), 10 (all but blockedApps), 20 (only "
                "allowedApps) or 30 (none).");
  }
  return behavior;
}

FolderExchange readFolder(JsonReader& reader, const json& value, const std::string& place) {
  FolderExchange folder;
  reader.members(value, place, [&](const std::string& key, const json& it, const std::string& at) {
    if (key == "uuid") {
      folder.uuid = reader.utf8(it, at);
    } else if (key == "title") {
      folder.title = readName(reader, it, at);
    } else if (key == "type") {
      folder.type = readFolderType(reader, it, at);
    } else if (key == "sort") {
      folder.sort = readInteger(reader, it, at);
    } else if (key == "shortcutKeyCode") {
      folder.shortcutKeyCode = readInteger(reader, it, at);
    } else if (key == "shortcutModifierFlags") {
      folder.shortcutModifierFlags = readInteger(reader, it, at);
    } else if (key == "expansionBehavior") {
      folder.expansionBehavior = readBehavior(reader, it, at);
    } else if (key == "allowedApps") {
      folder.allowedApps = readIdentifiers(reader, it, at);
    } else if (key == "blockedApps") {
      folder.blockedApps = readIdentifiers(reader, it, at);
    } else if (key == "snippets") {
      folder.snippets = readIdentifiers(reader, it, at);
    } else {
      reader.fail(at, "is not a key of a folder.");
    }
  });
  return folder;
}

// Appends `part` unless it is there: an error when somebody wrote its uuid twice, nothing when the uuid
// comes from the content.
template <class Part>
void addPart(JsonReader& reader, std::vector<Part>& parts, std::unordered_set<std::string>& uuids, Part part,
             const std::string& place) {
  const bool hasUuid = !part.uuid.empty();
  if (!hasUuid && !reader.error()) part.uuid = uuidForContent(toJson(part).dump());
  const bool isNew = uuids.insert(part.uuid).second;
  if (isNew) {
    parts.push_back(std::move(part));
  } else if (hasUuid) {
    reader.fail(place + ".uuid", "stands in the document before: give each its own uuid, or none.");
  }
}

class LibraryReader {
 public:
  LibraryExchange read(const json& value) {
    if (value.is_array()) {
      readSnippets(value, "");
      return std::move(library_);
    }
    if (!value.is_object()) {
      reader_.fail("document", "is neither a library (an object) nor a list of snippets.");
    }
    reader_.members(value, "", [this](const std::string& key, const json& it, const std::string& at) {
      if (key == "version") {
        if (readInteger(reader_, it, at) != kVersion) {
          reader_.fail(at, "is not 1: the document was written by a newer Quorlo, which can read it.");
        }
      } else if (key == "snippets") {
        readSnippets(it, at);
      } else if (key == "folders") {
        elements(reader_, it, at, [this](const json& each, const std::string& place) {
          addPart(reader_, library_.folders, folderUuids_, readFolder(reader_, each, place), place);
        });
      } else if (key == "excludedApplications") {
        library_.excludedApplications = readIdentifiers(reader_, it, at);
      } else {
        reader_.fail(at,
                     "is not a key of a library, which has version, snippets, folders and "
                     "excludedApplications.");
      }
    });
    return std::move(library_);
  }

  const std::optional<Error>& error() const { return reader_.error(); }

 private:
  void readSnippets(const json& value, const std::string& at) {
    elements(reader_, value, at, [this](const json& each, const std::string& place) {
      addPart(reader_, library_.snippets, snippetUuids_, readSnippet(reader_, each, place), place);
    });
  }

  JsonReader reader_;
  LibraryExchange library_;
  std::unordered_set<std::string> snippetUuids_;
  std::unordered_set<std::string> folderUuids_;
};

std::optional<Error> snippetInTwoFolders(const LibraryExchange& library) {
  std::unordered_map<std::string_view, const FolderExchange*> folderOf;
  for (const auto& folder : library.folders) {
    for (const auto& uuid : folder.snippets) {
      const auto [found, isNew] = folderOf.emplace(uuid, &folder);
      if (isNew || found->second == &folder) continue;
      return Error{"The snippet " + uuid + " is in two folders, \"" + toUtf8(found->second->title) +
                   "\" and \"" + toUtf8(folder.title) + "\": leave it in one."};
    }
  }
  return std::nullopt;
}

}  // namespace

std::int64_t readInteger(JsonReader& reader, const json& value, const std::string& place) {
  const bool fits = value.is_number_integer() &&
                    (!value.is_number_unsigned() || value.get<std::uint64_t>() <= std::uint64_t{INT64_MAX});
  if (fits) return value.get<std::int64_t>();
  reader.fail(place, "is not a whole number.");
  return 0;
}

FolderExchange exchangeForm(const QLCategory& folder) {
  return {
      .uuid = folder.uuid(),
      .title = folder.title(),
      .type = folder.type(),
      .sort = folder.sort(),
      .shortcutKeyCode = folder.shortcutKeyCode(),
      .shortcutModifierFlags = folder.shortcutModifierFlags(),
      .expansionBehavior = folder.expansionBehavior(),
      .allowedApps = bundleIDs(folder.allowedApps()),
      .blockedApps = bundleIDs(folder.blockedApps()),
      .snippets = {},
  };
}

ordered_json toJson(const FolderExchange& folder) {
  ordered_json object{
      {"uuid", folder.uuid},
      {"title", toUtf8(folder.title)},
      {"type", folder.type},
      {"sort", folder.sort},
      {"expansionBehavior", folder.expansionBehavior},
      {"allowedApps", folder.allowedApps},
      {"blockedApps", folder.blockedApps},
      {"snippets", folder.snippets},
  };
  if (folder.shortcutKeyCode) {
    object["shortcutKeyCode"] = *folder.shortcutKeyCode;
    object["shortcutModifierFlags"] = folder.shortcutModifierFlags;
  }
  return object;
}

Result<LibraryExchange> libraryFromJson(const json& value) {
  LibraryReader reader;
  auto library = reader.read(value);
  if (reader.error()) return *reader.error();
  if (auto error = snippetInTwoFolders(library)) return *error;
  return library;
}

}  // namespace quorlo
