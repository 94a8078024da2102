#include "program/command_run.h"

#include "cli/command_session.h"
#include "ui/file_user_defaults.h"
#include "ui/system_environment.h"

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
      {environment, [&] { return std::make_unique<FileUserDefaults>(environment.configDirectory()); }},
      request.json);
  return static_cast<int>(session.run(request.action));
}

}  // namespace quorlo
