#include "program/command_run.h"

#include "app/settings/stored_user_defaults.h"
#include "cli/command_session.h"
#include "platform/environment/system_environment.h"

#include <filesystem>
#include <memory>
#include <system_error>

namespace quorlo {
namespace {

std::filesystem::path programDirectory() {
  std::error_code failure;
  return std::filesystem::read_symlink("/proc/self/exe", failure).parent_path();
}

}  // namespace

int runCommand(const CommandRequest& request) {
  const SystemEnvironment environment(programDirectory());
  CommandSession session(
      {environment, [&] { return std::make_unique<StoredUserDefaults>(environment.configDirectory()); }},
      request.json);
  return static_cast<int>(session.run(request.action));
}

}  // namespace quorlo
