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

using testing::AllOf;
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
  void appear(std::vector<std::filesystem::path> files) {
    window_ = std::make_unique<QLCSVOptionsViewController>(
        QLCSVOptionsViewController::Dependencies{queue_, background_, settings_}, std::move(files),
        [this](const std::shared_ptr<const ImportData>& records, const ImportOptions&) {
          for (const auto& each : records->snippets) imported_.push_back(each.text.string());
          window_.reset();  // as one would who shows the progress of the import instead
        });
    window_->viewDidAppear();
  }
  void open(std::string_view table) {
    appear({file("table.csv", table)});
    settle();
  }
  // What is under way, then what it has to say.
  void step() {
    background_.runAll();
    queue_.runDue();
  }
  void settle() {
    while (!background_.idle() || !queue_.idle()) step();
  }
  void choose(std::size_t separator) {
    window_->changeSeperator(separator);
    settle();
  }
  std::string error() const { return toUtf8(window_->error()); }

  TemporaryDirectory directory_;
  FakeMainQueue queue_;
  FakeBackgroundQueue background_;
  FakeUserDefaults defaults_;
  SettingsController settings_{defaults_, queue_, [] { return Date(); }, [] { return std::nullopt; }};
  std::unique_ptr<QLCSVOptionsViewController> window_;
  Strings imported_;
};

TEST_F(CsvOptions, ShowTheTableAndAGuess) {
  open("Name;Shortcut;;Text\nGreeting;hi;;Hello, you\n\nBye;;;See\n");
  EXPECT_EQ(window_->seperatorSegmentedControl(), kSemicolon);
  EXPECT_EQ(window_->textPopUpButton().items,
            (Strings{u"None", u"", u"Name", u"Shortcut", u"Column 3", u"Text"}));
  EXPECT_EQ(window_->selectedColumns(), (CsvColumns{0, 1, 3}));
  EXPECT_THAT(window_->previewRows(), ElementsAre(Strings{u"Greeting", u"hi", u"", u"Hello, you"},
                                                  Strings{u"Bye", u"", u"", u"See"}));
  EXPECT_EQ(window_->rowCount(), 2U);
}

TEST_F(CsvOptions, KeepChosenColumnsWhileTheyExist) {
  open("a,b,c\n1,2,3\n");
  window_->selectText(PopUpButton::kFirstColumnItem);
  window_->selectTitle(PopUpButton::kNoneItem);
  window_->selectAbbreviation(PopUpButton::kSeparatorItem);  // is no choice
  EXPECT_EQ(window_->selectedColumns(), (CsvColumns{{}, 1, 0}));
  window_->selectAbbreviation(PopUpButton::kFirstColumnItem + 2);
  window_->setHasHeader(false);
  settle();
  EXPECT_EQ(window_->rowCount(), 2U);
  EXPECT_EQ(window_->selectedColumns(), (CsvColumns{{}, 2, 0}));
  choose(kSemicolon);
  EXPECT_EQ(window_->selectedColumns(), (CsvColumns{{}, {}, 0}));
  choose(kComma);
  EXPECT_EQ(window_->selectedColumns(), (CsvColumns{{}, 2, 0}));
}

TEST_F(CsvOptions, AskWhatIsNotKnownAndTellWhatTheChoiceLeavesOut) {
  open("Código,text\nhi,Hello, you\n");
  EXPECT_THAT(toUtf8(window_->question()), HasSubstr("Does the first row have the names"));
  EXPECT_TRUE(window_->hasHeaderCheckbox());
  window_->selectAbbreviation(PopUpButton::kFirstColumnItem);
  settle();
  const auto notice = toUtf8(window_->notice());
  EXPECT_THAT(notice, AllOf(HasSubstr("Abbreviations: “Código”. Texts: “text”."),
                            HasSubstr("The row in line 2 has more fields")));
  EXPECT_EQ(window_->question(), u"");
  window_->selectText(PopUpButton::kNoneItem);
  settle();
  EXPECT_THAT(toUtf8(window_->notice()),
              AllOf(HasSubstr("Left out: “text”"), HasSubstr("line 2 has an abbrev")));

  open("brb,be right back\nty,thank you\n");
  EXPECT_FALSE(window_->hasHeaderCheckbox());
  EXPECT_EQ(window_->rowCount(), 2U);
}

TEST_F(CsvOptions, ShowTheBeginningFirstAndCallOffWhatIsOutdated) {
  std::string table = "abbr,text\n";
  for (int i = 0; i < 150; ++i) table += "x;y," + std::string(300, 'z') + "\n";
  appear({file("table.csv", table)});
  step();  // the file
  EXPECT_TRUE(window_->progressIndicator().isAnimating);
  EXPECT_FALSE(window_->canConfirm());
  step();  // the beginning
  ASSERT_EQ(window_->previewRows().size(), 100U);
  EXPECT_EQ(window_->previewRows()[0][1], std::u16string(200, u'z') + u"…");
  EXPECT_EQ(window_->rowCount(), std::nullopt);
  EXPECT_TRUE(window_->canConfirm());

  background_.runAll();  // the number of rows is on its way
  window_->changeSeperator(kSemicolon);
  EXPECT_FALSE(window_->canConfirm());
  queue_.runDue();
  EXPECT_EQ(window_->rowCount(), std::nullopt);
  settle();
  EXPECT_EQ(window_->rowCount(), 150U);
  EXPECT_EQ(window_->headers(), (Strings{u"abbr,text"}));
}

TEST_F(CsvOptions, HandOnTheRecordsOfAllFilesAndLogThemInDebugMode) {
  std::vector<std::string> lines;
  setDebugLogging(true);
  const auto log = redirectLog([&](LogLevel, std::string_view line) { lines.emplace_back(line); });
  settings_.setDebugModeEnabled(true);
  appear({file("a.csv", "title,text\nT,\"line\n2\"\n"), file("b.csv", "name,content\nU,v\n")});
  settle();
  window_->confirmOptions();
  window_->changeSeperator(kSemicolon);  // too late
  settle();
  setDebugLogging(false);
  EXPECT_EQ(imported_, (Strings{u"line\n2", u"v"}));
  EXPECT_THAT(lines, ElementsAre("titleIndex: 0", "abbreviationIndex: none", "textIndex: 1",
                                 R"(record: {"title":"T","plainText":"line\n2"})",
                                 R"(record: {"title":"U","plainText":"v"})"));
}

TEST_F(CsvOptions, ImportNothingWhenCancelledOrUnreadable) {
  appear({file("a.csv", "a,b\n1,2\n"), file("b.csv", "a\n1\n")});
  settle();
  window_->confirmOptions();
  settle();
  EXPECT_THAT(error(), HasSubstr("b.csv cannot be read: there is no column 2"));
  EXPECT_FALSE(window_->importCSVSnippets());
  file("b.csv", "a,b\n1,2\n");
  EXPECT_TRUE(window_->canConfirm());  // once the file is mended
  window_->confirmOptions();
  background_.runAll();
  window_->cancel();
  settle();
  EXPECT_TRUE(window_->isClosed());
  EXPECT_TRUE(imported_.empty());

  appear({directory_ / "missing.csv"});
  settle();
  EXPECT_THAT(error(), HasSubstr("missing.csv cannot be read: No such file"));
  EXPECT_FALSE(window_->canConfirm());
}

TEST_F(CsvOptions, StayUsableWithHostileTables) {
  open("title" + std::string(1'500, ',') + "\n" + std::string(1'500, ','));
  EXPECT_EQ(window_->headers().size(), 1'000U);
  EXPECT_THAT(toUtf8(window_->notice()),
              HasSubstr("The table has 1501 columns; the first thousand are shown."));
  EXPECT_FALSE(window_->canConfirm());  // there is nothing in the rows

  open("a,b\n1," + std::string(1'000'000, ','));
  EXPECT_THAT(error(), HasSubstr("the row in line 2 has more than a million fields"));
  choose(kSemicolon);
  EXPECT_EQ(error(), "");
  EXPECT_TRUE(window_->canConfirm());
}

}  // namespace
}  // namespace quorlo
