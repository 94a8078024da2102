#include "x11/desktop/desktop_files.h"

#include "virtual_desktop/temp_dir.h"
#include "virtual_desktop/wait.h"
#include "x11/desktop/open_url.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace quorlo {
namespace {

class DesktopFilesTest : public testing::Test {
 protected:
  void install(const std::string& path, const std::string& lines) {
    std::filesystem::create_directories((directory_ / path).parent_path());
    writeFile(directory_ / path, "[Desktop Entry]\nType=Application\n" + lines);
  }
  std::string idOf(const std::string& instance, const std::string& windowClass) {
    const auto* file = files_.ofWindow(instance, windowClass);
    return file != nullptr ? file->identifier : "none";
  }

  TempDir directory_;
  DesktopFiles files_{{directory_ / "user", directory_ / "missing", directory_ / "system"}};
};

TEST_F(DesktopFilesTest, AWindowIsFoundByItsStatedClassThenByTheFilesName) {
  install("system/debian-xterm.desktop", "Name=XTerm\nStartupWMClass = XTerm\n");
  install("system/org.gnome.TextEditor.desktop", "Name=Text Editor\n");
  install("system/kde4/kate.desktop", "Name=Kate\n");
  install("system/trap.desktop", "Name=Trap\n[Desktop Action new]\nStartupWMClass=featherpad\nName=Wrong\n");
  EXPECT_EQ(idOf("xterm", "XTerm"), "debian-xterm");
  EXPECT_EQ(idOf("org.gnome.texteditor", "org.gnome.TextEditor"), "org.gnome.TextEditor");
  EXPECT_EQ(idOf("kde4-kate", "Editor"), "kde4-kate");
  EXPECT_EQ(idOf("featherpad", "featherpad"), "none");
  EXPECT_EQ(files_.withIdentifier("trap")->name, "Trap");
  EXPECT_EQ(idOf("", ""), "none");
}

TEST_F(DesktopFilesTest, TheUsersFilesHideThoseOfTheSystem) {
  install("user/editor.desktop", "Name=Mine\n");
  install("system/editor.desktop", "Name=Theirs\n");
  EXPECT_EQ(files_.withIdentifier("editor")->name, "Mine");
}

TEST_F(DesktopFilesTest, AProgramInstalledLaterIsFoundByTheFirstSearchForItsName) {
  EXPECT_EQ(idOf("known", "Known"), "none");
  install("system/fresh.desktop", "Name=Fresh\n");
  EXPECT_EQ(idOf("known", "Known"), "none");
  EXPECT_EQ(idOf("fresh", "Fresh"), "fresh");
}

TEST_F(DesktopFilesTest, TheNameIsInTheUsersLanguage) {
  setenv("LC_ALL", "de_AT.UTF-8", 1);
  install("system/a.desktop", "Name[de]=Rechner\nName=Calculator\nName[fr]=Calculatrice\n");
  install("system/b.desktop", "Name[de]=Jänner?\nName[de_AT]=Jänner\nName=January\n");
  EXPECT_EQ(files_.withIdentifier("a")->name, "Rechner");
  EXPECT_EQ(files_.withIdentifier("b")->name, "Jänner");
  unsetenv("LC_ALL");
}

TEST_F(DesktopFilesTest, AMenuOfApplicationsShowsThoseThatAreNotHidden) {
  install("system/editor.desktop", "Name=Editor\nIcon=pencil\n[Desktop Action new]\nNoDisplay=true\n");
  install("system/helper.desktop", "Name=Helper\nNoDisplay=true\n");
  install("system/page.desktop", "Name=Page\nType=Link\n");
  install("user/removed.desktop", "Name=Removed\nHidden=true\n");
  std::string shown;
  for (const auto& file : files_.all()) shown += file.isApplication ? file.identifier + " " + file.icon : "";
  EXPECT_EQ(shown, "editor pencil");
}

TEST(OpenUrl, OnlyAddressesAreHandedToTheDesktop) {
  for (const auto* url : {"https://example.org/a?b#c", "mailto:a@b", "x-scheme.settings:panel"}) {
    EXPECT_TRUE(isAddress(url)) << url;
  }
  for (const auto* url : {"", ":", "https:", "example.org", "-x:y", "a b:c", "https://a b", "file:a\nb"}) {
    EXPECT_FALSE(openInDesktop(url)) << url;
  }
}

TEST(OpenUrl, StartsTheDesktopsProgramWithTheAddressAsItsOnlyArgument) {
  TempDir directory;
  const auto program = directory / "xdg-open";
  writeFile(program, "#!/bin/sh\necho \"$# $1\" > \"$0.called\"\n");
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  const std::string path = getenv("PATH");
  setenv("PATH", (directory.path().string() + ":" + path).c_str(), 1);
  EXPECT_TRUE(openInDesktop("https://example.org/$(id);a"));
  EXPECT_TRUE(waitUntil(
      [&] { return readFile(directory / "xdg-open.called") == "1 https://example.org/$(id);a\n"; }));
  setenv("PATH", path.c_str(), 1);
}

}  // namespace
}  // namespace quorlo
