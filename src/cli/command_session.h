#pragma once

#include "base/result.h"
#include "base/subscription.h"
#include "cli/command_output.h"
#include "cli/exit_status.h"
#include "store/context/library_use.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace quorlo {

class Environment;
class MainQueue;
class ManagedObjectContext;
class SettingsController;
class StoredUserDefaults;

// What one command of the command line runs with. Results go to standard output, everything else that is
// to be said to standard error. What a command does not ask for is not opened. One thread.
class CommandSession {
 public:
  struct Services {
    const Environment& environment;
    std::function<std::unique_ptr<StoredUserDefaults>()> openDefaults;
  };

  CommandSession(Services services, bool json);
  CommandSession(const CommandSession&) = delete;
  CommandSession& operator=(const CommandSession&) = delete;
  ~CommandSession();

  // Runs the action; says what went wrong.
  ExitStatus run(const std::function<Result<ExitStatus>(CommandSession&)>& action);

  const Environment& environment() const { return services_.environment; }
  // What is written into them stays in memory until it is synchronised.
  StoredUserDefaults& defaults();
  SettingsController& settings();

  // The library as it is. Where there is none, says so, and gives an empty one that is kept nowhere. One that
  // is to be changed keeps other programs that save waiting until it is saved, so that nothing is waited for
  // meanwhile.
  Result<std::unique_ptr<ManagedObjectContext>> openLibrary(LibraryUse use = LibraryUse::reading);
  // The library to be changed, begun where there is none.
  Result<std::unique_ptr<ManagedObjectContext>> beginLibrary();

  // Whether the result is to be one JSON document.
  bool json() const { return json_; }
  CommandOutput& out() { return output_; }
  void printJson(const nlohmann::ordered_json& document);

  // A line on standard error.
  void note(std::string_view message);

  // Whether somebody is there to answer.
  bool canAsk() const;
  // Asks for a "y".
  bool confirm(std::string_view question);

  // Standard input to its end; an error when it cannot be read or is larger than 256 MiB.
  Result<std::string> readInput();

 private:
  Services services_;
  bool json_;
  CommandOutput output_;
  Subscription log_;
  std::unique_ptr<StoredUserDefaults> defaults_;
  std::unique_ptr<MainQueue> queue_;
  std::unique_ptr<SettingsController> settings_;
};

}  // namespace quorlo
