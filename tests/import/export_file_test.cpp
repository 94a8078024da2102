#include "base/file_draft.h"
#include "fakes/fake_background_queue.h"
#include "fakes/temporary_directory.h"
#include "import/export/export_library.h"
#include "import/export/library_export.h"
#include "random_library.h"
#include "store/context/background_context.h"
#include "store/sqlite/file/store_opening.h"
#include "store/sqlite/open_library.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <iterator>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::ptrdiff_t fileCount(const fs::path& folder) {
  return std::distance(fs::directory_iterator(folder), {});
}

Status writeFile(const fs::path& file, std::string_view content) {
  FileDraft draft(file);
  if (auto status = draft.open(); !status) return status;
  if (auto status = draft.write(content); !status) return status;
  return draft.takePlace();
}

TEST(FileDraft, TakesTheFilesPlaceWithItsModeAndLeavesLinksAsTheyAre) {
  TemporaryDirectory directory;
  std::ofstream(directory / "old") << "old";
  fs::permissions(directory / "old", fs::perms(0640));
  fs::create_directory(directory / "elsewhere");
  fs::create_symlink("old", directory / "link");
  fs::create_symlink("elsewhere/new", directory / "dangling");
  const std::string longName(255, 'n');
  for (const auto* name : {"link", "dangling", longName.c_str()}) {
    const auto status = writeFile(directory / name, name);
    ASSERT_TRUE(status) << status.error().message;
  }
  EXPECT_EQ(contentOf(directory / "old"), "link");
  EXPECT_EQ(fs::status(directory / "old").permissions(), fs::perms(0640));
  EXPECT_TRUE(fs::is_symlink(directory / "link"));
  EXPECT_EQ(contentOf(directory / "elsewhere" / "new"), "dangling");
  EXPECT_EQ(contentOf(directory / longName), longName);
  EXPECT_EQ(fileCount(directory.path()), 5);
}

TEST(FileDraft, SaysWhyAFileCannotBeWrittenAndWhatToDo) {
  TemporaryDirectory directory;
  fs::create_symlink("circle", directory / "circle");
  const std::vector<std::pair<fs::path, std::string>> cases{
      {directory.path(), "it is a folder. Name a file in it."},
      {directory / "missing" / "file", "there is no such folder. Make it or choose another place."},
      {directory / "circle", "Too many levels of symbolic links."},
      {"/dev/full", "the disk is full. Free some space or choose another place."},
  };
  for (const auto& [file, message] : cases) {
    const auto status = writeFile(file, "x");
    ASSERT_FALSE(status) << file;
    EXPECT_EQ(status.error().message.find(file.string() + " cannot be written: " + message), 0U)
        << status.error().message;
  }
}

TEST(FileDraft, LeavesTheFormerFileWhenTheNewOneCannotBeFinished) {
  TemporaryDirectory directory;
  std::ofstream(directory / "file") << "former";
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{.rlim_cur = 1000, .rlim_max = before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  EXPECT_FALSE(writeFile(directory / "file", std::string(5000, 'x')));
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(contentOf(directory / "file"), "former");
  EXPECT_EQ(fileCount(directory.path()), 1);
}

// A library with a file, and an export of it that runs when the test lets it.
struct ExportWorld {
  TemporaryDirectory directory{TemporaryDirectory::quickParent()};
  OpenLibrary library{directory / "library"};
  FakeBackgroundQueue background;
  fs::path file = directory / "export.json";
  std::optional<Result<ExportReport>> result;
  std::optional<LibraryExport> work{
      std::in_place,
      LibraryExport::Dependencies{
          library.queue(), background, library.context(), [this] {
            return openBackgroundContext(
                directory / "library" / kStoreFileName,
                {.name = "export", .transactionAuthor = "export", .now = [] { return Date(); }});
          }}};

  void start() {
    work->start(WholeLibrary{}, ExportFormat::json, file, [this](const auto& outcome) { result = outcome; });
  }
  void settle() {
    background.runAll();
    library.queue().settle();
  }
};

TEST(LibraryExport, HoldsWhatWasNotSavedYetWithFormatsThatAreOnlyInTheFile) {
  ExportWorld world;
  const auto snippet = world.library.context().insert<QLSnippet>();
  snippet->setText(AttributedString(u"bold", {.bold = true}));
  snippet->setTitle(u"Title");
  world.start();
  EXPECT_TRUE(world.work->isRunning());
  world.settle();
  ASSERT_TRUE(world.result && *world.result);
  EXPECT_EQ(world.result->value().snippets, 1U);
  EXPECT_EQ(world.work->progress()->fraction(), 1);
  EXPECT_FALSE(world.work->isRunning());
  EXPECT_EQ(contentOf(world.file),
            exportText(world.library.context(), WholeLibrary{}, ExportFormat::json).value());
  EXPECT_NE(contentOf(world.file).find(R"("bold":true)"), std::string::npos);
}

TEST(LibraryExport, LeavesTheFormerFileWhenItIsCancelled) {
  ExportWorld world;
  std::ofstream(world.file) << "former";
  world.library.context().insert<QLSnippet>();
  world.start();
  world.work->cancel();
  world.settle();
  ASSERT_TRUE(world.result);
  EXPECT_FALSE(*world.result);
  EXPECT_EQ(contentOf(world.file), "former");
  EXPECT_EQ(fileCount(world.directory.path()), 2);
}

TEST(LibraryExport, KeepsTheCharactersOfATextWhoseFormatsAreDamagedAndSaysSo) {
  ExportWorld world;
  const auto snippet = world.library.context().insert<QLSnippet>();
  snippet->setTitle(u"Damaged");
  snippet->setText(AttributedString(u"bold", {.bold = true}));
  ASSERT_TRUE(world.library.context().save());
  ASSERT_TRUE(world.library.database().execute("UPDATE SnippetText SET text = x'00'"));
  world.start();
  world.settle();
  ASSERT_TRUE(world.result && *world.result);
  ASSERT_EQ(world.result->value().warnings.size(), 1U);
  EXPECT_EQ(world.result->value().warnings[0].snippet, u"Damaged");
  EXPECT_NE(contentOf(world.file).find(R"("text":"bold")"), std::string::npos);
}

}  // namespace
}  // namespace quorlo
