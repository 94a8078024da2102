#pragma once

#include "app/settings/defaults_file.h"
#include "base/observers.h"
#include "base/result.h"
#include "platform/user_defaults.h"

#include <array>
#include <filesystem>
#include <string>

namespace quorlo {

// The settings in two files of one directory: settings.json, and shared-settings.json for the domain of
// the application group. Values are held in memory; they are written and read again when somebody asks for
// it. A file that turns unreadable leaves the values as they are; one that is unreadable at the start counts
// as empty. Either is logged, and kept when it has to be written. One thread.
class StoredUserDefaults : public UserDefaults {
 public:
  // Reads the files, and makes nothing where there are none.
  explicit StoredUserDefaults(std::filesystem::path directory);

  const DefaultsValue* value(DefaultsDomain domain, std::string_view key) const override;
  void setValue(DefaultsDomain domain, std::string_view key, DefaultsValue value) override;
  void removeValue(DefaultsDomain domain, std::string_view key) override;
  Subscription observeExternalChanges(Observer observer) override;

  // An error while one of the files cannot be read: it names the file, with the place in it.
  Status readable() const;

  // Writes what is not on disk yet. After a failure it stays to be written.
  Status synchronize();

  // Takes on what others have written, and tells the observers.
  void readAgain();

 protected:
  const std::filesystem::path& directory() const { return directory_; }
  std::array<std::filesystem::path, 2> files() const;

  // Something waits for synchronize().
  virtual void valueHasChanged() {}

 private:
  struct Domain {
    DefaultsFile file;
    DefaultsValues values;
    DefaultsChanges unwritten;
    std::string problem;  // of the last read; logged once
  };

  Domain& domainOf(DefaultsDomain domain);
  const Domain& domainOf(DefaultsDomain domain) const;
  void readAgain(DefaultsDomain name);

  std::filesystem::path directory_;
  std::array<Domain, 2> domains_;
  Observers<DefaultsDomain, const std::string&> observers_;
};

// Makes the folder of the settings, known to the user alone like the files in it.
Status makeSettingsDirectory(const std::filesystem::path& directory);

}  // namespace quorlo
