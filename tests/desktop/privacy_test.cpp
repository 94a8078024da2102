// What others can see of the user's texts.
#include "desktop/quorlo_desktop_test.h"

#include <linux/capability.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorlo {
namespace {

class DesktopPrivacyTest : public QuorloDesktopTest {
 protected:
  // Starts Quorlo without privileges, those of root too.
  void startUnprivileged(const std::string& library) {
    const auto starter = desktop().directory() / "unprivileged";
    const std::string drop = geteuid() == 0 ? "setpriv --bounding-set=-all --inh-caps=-all " : "";
    writeFile(starter, "#!/bin/sh\nexec " + drop + QUORLO " \"$@\"\n");
    std::filesystem::permissions(starter, std::filesystem::perms::owner_all);
    quorlo_ = std::make_unique<QuorloProgram>(desktop(), starter, library);
  }
  // True if a program of the same user without privileges can look into the process.
  static bool isOpen(pid_t process) {
    const auto program = "/proc/" + std::to_string(process) + "/exe";
    const pid_t child = fork();
    if (child == 0) {
      __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
      __user_cap_data_struct none[2]{};
      char name[1];
      if (syscall(SYS_capset, &header, none) != 0) _exit(2);
      _exit(readlink(program.c_str(), name, sizeof name) < 0 ? 1 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_NE(WEXITSTATUS(status), 2);
    return WEXITSTATUS(status) == 0;
  }
  void setDebugMode(const std::string& value) {
    runProgram({.words = {QUORLO, "settings", "set", "QLDebugModeEnabled", value},
                .variables = desktop().variables(),
                .output = {}});
  }
};

TEST_F(DesktopPrivacyTest, TextsAreInTheLogAndTheMemoryIsReadableInDebugModeOnly) {
  startUnprivileged(libraryOf({{"brb", "hush %date:"}}));
  const auto editor = openRichEditor();
  EXPECT_FALSE(isOpen(quorlo().process().pid()));
  type("brb ");
  EXPECT_EQ(editor->textOnceItIs("hush %date: "), "hush %date: ");
  EXPECT_NE(quorlo().log().find("WARNING: #3ddsdsc "), std::string::npos);
  EXPECT_EQ(quorlo().log().find("hush"), std::string::npos) << quorlo().log();

  setDebugMode("true");
  EXPECT_TRUE(waitUntil([&] { return isOpen(quorlo().process().pid()); }));
  type("brb ");
  EXPECT_EQ(editor->textOnceItIs("hush %date: hush %date: "), "hush %date: hush %date: ");
  EXPECT_NE(quorlo().log().find("hush"), std::string::npos) << quorlo().log();

  setDebugMode("false");
  EXPECT_TRUE(waitUntil([&] { return !isOpen(quorlo().process().pid()); }));
}

}  // namespace
}  // namespace quorlo
