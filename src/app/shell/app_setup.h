#pragma once

#include "base/result.h"

#include <functional>

namespace quorlo {

class NavigationModel;
class PersistenceController;
class SettingsController;
class UserDefaults;

// Prepares the library when the program starts, and keeps what was selected in the editor from one run to
// the next. One instance; main thread.
class AppSetup {
 public:
  struct Dependencies {
    PersistenceController& persistence;
    UserDefaults& defaults;
    SettingsController& settings;
    NavigationModel& navigation;
    // Makes the changes of other processes come into the main context from now on.
    std::function<Status()> observeRemoteChanges;
  };

  // The references must outlive this.
  explicit AppSetup(Dependencies dependencies);

  // An error when changes of other processes will not be noticed; everything else is done all the same.
  Status prepareStore();

  // What belongs to versions before this one, each step once. Leaves saving to its caller; an error when what
  // was merged could not be saved.
  Status migrateStore();

  // What was selected when the program ended last, as far as it is there still.
  void restoreSelection();
  void recordSelection();

 private:
  // Runs the step unless the library or the settings have the flag that says that it has been done, and sets
  // it in both once it is: another device then finds it in the library.
  void once(const char* flag, const std::function<bool()>& step);

  Dependencies use_;
};

}  // namespace quorlo
