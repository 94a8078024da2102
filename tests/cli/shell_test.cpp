#include "cli/shell_test.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace quorlo {
namespace {

void redirect(int descriptor, const std::filesystem::path& file, int flags) {
  const int opened = ::open(file.c_str(), flags, 0600);
  if (opened < 0 || ::dup2(opened, descriptor) < 0) std::_Exit(125);
}

std::string read(const std::filesystem::path& file) {
  std::ostringstream content;
  content << std::ifstream(file, std::ios::binary).rdbuf();
  return content.str();
}

}  // namespace

ShellTest::Outcome ShellTest::run(const std::string& script) const {
  const auto out = home_ / ".stdout";
  const auto err = home_ / ".stderr";
  const auto process = ::fork();
  if (process == 0) {
    redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
    redirect(STDOUT_FILENO, out, O_WRONLY | O_CREAT | O_TRUNC);
    redirect(STDERR_FILENO, err, O_WRONLY | O_CREAT | O_TRUNC);
    if (::chdir(home_.path().c_str()) != 0) std::_Exit(125);
    const auto homeVariable = std::string("HOME=").append(home_.path().native());
    const std::string path = "PATH=" QUORLO_PROGRAM_DIRECTORY ":/usr/bin:/bin";
    ::execl("/usr/bin/env", "env", "-i", homeVariable.c_str(), path.c_str(), "LANG=de_DE.UTF-8", "bash", "-c",
            script.c_str(), nullptr);
    std::_Exit(125);
  }
  int status = 0;
  ::waitpid(process, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), read(out), read(err)};
}

std::string ShellTest::out(const std::string& script) const {
  const auto outcome = run(script);
  EXPECT_EQ(outcome.status, 0) << script << "\n" << outcome.err;
  return outcome.out;
}

std::string ShellTest::complaint(const std::string& script, int status) const {
  const auto outcome = run(script);
  EXPECT_EQ(outcome.status, status) << script << "\n" << outcome.out;
  EXPECT_EQ(outcome.out, "") << script;
  return outcome.err;
}

std::filesystem::path ShellTest::file(const std::string& name, const std::string& content) const {
  std::ofstream(home_ / name, std::ios::binary) << content;
  return home_ / name;
}

std::string ShellTest::content(const std::string& name) const {
  return read(home_ / name);
}

}  // namespace quorlo
