#include "app/settings/settings_controller.h"
#include "base/log.h"
#include "fakes/fake_background_queue.h"
#include "fakes/fake_main_queue.h"
#include "fakes/fake_user_defaults.h"
#include "fakes/temporary_directory.h"
#include "import/csv/ql_csv_options_view_controller.h"
#include "text/utf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace quorlo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Strings = std::vector<std::u16string>;

constexpr std::size_t kComma = 0;
constexpr std::size_t kSemicolon = 1;

class CsvOptions : public testing::Test {
 protected:
  std::filesystem::path file(const std::string& name, std::string_view content) const {
    std::ofstream(directory_ / name) << content;
    return directory_ / name;
  }

  void open(std::vector<std::filesystem::path> files) {
    controller_ = std::make_unique<QLCSVOptionsViewController>(
        QLCSVOptionsViewController::Dependencies{queue_, background_, settings_}, std::move(files),
        [this](std::shared_ptr<const ImportData> records, ImportOptions) {
          ++imports_;
          records_ = std::move(records);
          controller_.reset();  // as one would who shows the progress of the import instead
        });
    controller_->viewDidAppear();
  }
  void open(std::string_view table) { open({file("table.csv", table)}); }

  void settle() {
    while (!background_.idle() || !queue_.idle()) {
      background_.runAll();
      queue_.runDue();
    }
  }

  TemporaryDirectory directory_;
  FakeMainQueue queue_;
  FakeBackgroundQueue background_;
  FakeUserDefaults defaults_;
  SettingsController settings_{defaults_, queue_, [] { return Date(); }, [] { return std::nullopt; }};
  std::unique_ptr<QLCSVOptionsViewController> controller_;
  std::shared_ptr<const ImportData> records_;
  int imports_ = 0;
};

TEST_F(CsvOptions, ShowsTheTableAndAGuess) {
  open("Name;Shortcut;;Text\nGreeting;hi;;Hello, you\n\nBye;;;See\n");
  EXPECT_THAT(toUtf8(controller_->urlTextField()), testing::EndsWith("/table.csv"));
  EXPECT_TRUE(controller_->progressIndicator().isAnimating);
  EXPECT_FALSE(controller_->canConfirm());
  settle();
  EXPECT_FALSE(controller_->progressIndicator().isAnimating);
  EXPECT_TRUE(controller_->hasHeaderCheckbox());
  EXPECT_EQ(controller_->seperatorSegmentedControl(), kSemicolon);
  EXPECT_EQ(controller_->headers(), (Strings{u"Name", u"Shortcut", u"Column 3", u"Text"}));
  EXPECT_EQ(controller_->textPopUpButton().items,
            (Strings{u"None", u"", u"Name", u"Shortcut", u"Column 3", u"Text"}));
  EXPECT_EQ(controller_->selectedColumns(), (CsvColumns{0, 1, 3}));
  EXPECT_THAT(controller_->previewRows(), ElementsAre(Strings{u"Greeting", u"hi", u"", u"Hello, you"},
                                                      Strings{u"Bye", u"", u"", u"See"}));
  EXPECT_EQ(controller_->rowCount(), 2U);
  EXPECT_EQ(controller_->notice(), u"");
}

TEST_F(CsvOptions, KeepsChosenColumnsWhileTheyExist) {
  open("a,b,c\n1,2,3\n");
  settle();
  controller_->selectText(PopUpButton::kFirstColumnItem);
  controller_->selectTitle(PopUpButton::kNoneItem);
  controller_->selectAbbreviation(PopUpButton::kSeparatorItem);  // is no choice
  EXPECT_EQ(controller_->selectedColumns(), (CsvColumns{{}, 1, 0}));
  controller_->selectAbbreviation(PopUpButton::kFirstColumnItem + 2);
  controller_->setHasHeader(false);
  settle();
  EXPECT_EQ(controller_->headers(), (Strings{u"Column 1", u"Column 2", u"Column 3"}));
  EXPECT_EQ(controller_->rowCount(), 2U);
  EXPECT_EQ(controller_->selectedColumns(), (CsvColumns{{}, 2, 0}));
  controller_->changeSeperator(kSemicolon);
  settle();
  EXPECT_EQ(controller_->selectedColumns(), (CsvColumns{{}, {}, 0}));
  controller_->changeSeperator(kComma);
  settle();
  EXPECT_EQ(controller_->selectedColumns(), (CsvColumns{{}, 2, 0}));
}

TEST_F(CsvOptions, ShowTheBeginningFirstAndCallOffWhatIsOutdated) {
  std::string table = "a,b\n";
  for (int i = 0; i < 150; ++i) table += "x;y," + std::string(300, 'z') + "\n";
  open(table);
  background_.runAll();  // the file
  queue_.runDue();
  background_.runAll();  // the beginning
  queue_.runDue();
  ASSERT_EQ(controller_->previewRows().size(), 100U);
  EXPECT_EQ(controller_->previewRows()[0][1], std::u16string(200, u'z') + u"…");
  EXPECT_EQ(controller_->rowCount(), std::nullopt);
  EXPECT_TRUE(controller_->canConfirm());

  background_.runAll();  // the number of rows is on its way
  controller_->changeSeperator(kSemicolon);
  EXPECT_FALSE(controller_->canConfirm());
  queue_.runDue();
  EXPECT_EQ(controller_->rowCount(), std::nullopt);
  settle();
  EXPECT_EQ(controller_->rowCount(), 150U);
  EXPECT_EQ(controller_->headers(), (Strings{u"a,b"}));
}

TEST_F(CsvOptions, HandOnTheRecordsOfAllFilesAndLogThemInDebugMode) {
  std::vector<std::string> lines;
  setDebugLogging(true);
  const auto log = redirectLog([&](LogLevel, std::string_view line) { lines.emplace_back(line); });
  settings_.setDebugModeEnabled(true);
  open({file("a.csv", "title,text\nT,\"line\n2\"\n"), file("b.csv", "name,content\nU,v\n")});
  settle();
  controller_->confirmOptions();
  EXPECT_TRUE(controller_->importCSVSnippets());
  controller_->changeSeperator(kSemicolon);  // too late
  settle();
  setDebugLogging(false);
  ASSERT_EQ(imports_, 1);
  ASSERT_EQ(records_->snippets.size(), 2U);
  EXPECT_EQ(records_->snippets[0].text.string(), u"line\n2");
  EXPECT_EQ(records_->snippets[1].title, u"U");
  EXPECT_THAT(lines, ElementsAre("titleIndex: 0", "abbreviationIndex: none", "textIndex: 1",
                                 R"(record: {"title":"T","plainText":"line\n2"})",
                                 R"(record: {"title":"U","plainText":"v"})"));
}

TEST_F(CsvOptions, ImportNothingWhenCancelledOrUnreadable) {
  const auto second = file("b.csv", "a\n1\n");
  open({file("a.csv", "a,b\n1,2\n"), second});
  settle();
  controller_->confirmOptions();
  settle();
  EXPECT_THAT(toUtf8(controller_->error()), HasSubstr("b.csv cannot be read: there is no column 2"));
  EXPECT_FALSE(controller_->importCSVSnippets());
  file("b.csv", "a,b\n1,2\n");
  EXPECT_TRUE(controller_->canConfirm());  // once the file is mended
  controller_->confirmOptions();
  background_.runAll();
  controller_->cancel();
  settle();
  EXPECT_TRUE(controller_->isClosed());
  EXPECT_EQ(imports_, 0);

  int changes = 0;
  open({directory_ / "missing.csv"});
  const auto observation = controller_->observe([&] { ++changes; });
  settle();
  EXPECT_EQ(changes, 1);
  EXPECT_THAT(toUtf8(controller_->error()), HasSubstr("missing.csv cannot be read: No such file"));
  EXPECT_FALSE(controller_->canConfirm());
}

TEST_F(CsvOptions, StayUsableWithHostileTables) {
  open(std::string(1'500, ',') + "\n" + std::string(1'500, ','));
  settle();
  EXPECT_EQ(controller_->headers().size(), 1'000U);
  EXPECT_EQ(controller_->notice(), u"The table has 1501 columns; the first thousand are shown.");
  EXPECT_FALSE(controller_->canConfirm());  // there is nothing in the rows

  open("a,b\n1," + std::string(1'000'000, ','));
  settle();
  EXPECT_THAT(toUtf8(controller_->error()), HasSubstr("the row in line 2 has more than a million fields"));
  controller_->changeSeperator(kSemicolon);
  settle();
  EXPECT_EQ(controller_->error(), u"");
  EXPECT_TRUE(controller_->canConfirm());

  open("a\n1\n");
  background_.runAll();
  controller_.reset();  // what is on its way finds nobody
  settle();
}

}  // namespace
}  // namespace quorlo
