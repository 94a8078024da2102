#include "import/export/export_library.h"
#include "import/work_progress.h"
#include "random_library.h"
#include "store/exchange/library_document.h"
#include "store/exchange/library_exchange.h"
#include "text/utf.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>
#include <set>

namespace quorlo {
namespace {

using nlohmann::json;

std::string document(const TestLibrary& library, const ExportSelection& selection = WholeLibrary{}) {
  const auto text = exportText(library.context, selection, ExportFormat::json);
  EXPECT_TRUE(text) << text.error().message;
  return text ? text.value() : "";
}

// All that a document is to hold of the snippets, by uuid, told from the records.
std::map<std::string, std::tuple<std::u16string, std::u16string, std::int64_t, std::string, AttributedString>>
contents(const TestLibrary& library) {
  decltype(contents(library)) found;
  for (const auto& each : library.context.fetch<QLSnippet>({}).value()) {
    if (each->deletionDate()) continue;
    found[each->uuid()] = {each->title(), each->abbreviation(), each->formatted(),
                           each->category() ? each->category()->uuid() : "", each->text()};
  }
  return found;
}

// The same of the folders, whose snippets the snippets tell.
std::set<std::string> folders(const TestLibrary& library) {
  std::set<std::string> found;
  for (const auto& each : library.context.fetch<QLCategory>({}).value()) {
    found.insert(std::to_string(each->sourceType()) + toJson(exchangeForm(*each)).dump());
  }
  return found;
}

TEST(JsonExport, IsTheSameLibraryWhenItIsReadAgainAndTheSameDocumentWhenThatIsExported) {
  Random random(20);
  for (int round = 0; round < 300; ++round) {
    TestLibrary library;
    fillAtRandom(library, random);
    const auto written = document(library);
    TestLibrary copy;
    const auto report = readLibrary(written, "written", copy.context);
    ASSERT_TRUE(report) << report.error().message;
    EXPECT_EQ(contents(copy), contents(library));
    EXPECT_EQ(document(copy), written);
    EXPECT_EQ(folders(copy), folders(library));
  }
}

TEST(JsonExport, KeepsTitlesThatFollowTheirTexts) {
  TestLibrary library;
  for (const char16_t* title : {u"First line", u"Own", u"Given"}) {
    const auto snippet = library.snippet(title);
    snippet->setUuid(toUtf8(title));
    snippet->setText(AttributedString(u"\nFirst line\nsecond"));
    snippet->setTitleIsCustom(snippet->title() == u"Given");
  }
  TestLibrary copy;
  ASSERT_TRUE(readLibrary(document(library), "written", copy.context));
  const auto derived = copy.controller.snippet("First line");
  EXPECT_EQ(derived->title(), u"First line");
  EXPECT_FALSE(derived->titleIsCustom());
  EXPECT_EQ(copy.controller.snippet("Own")->title(), u"Own");
  EXPECT_TRUE(copy.controller.snippet("Given")->titleIsCustom());
}

TEST(JsonExport, TakesAFolderOrSingleSnippetsAndNothingElse) {
  TestLibrary library;
  const auto own = library.folder(CategoryType::Folder);
  own->setUuid("F");
  const auto codeFolder = library.folder(CategoryType::Code, SourceType::General);
  library.app("org.example.Excluded");
  for (const char16_t each : {u'a', u'b', u'c', u'd'}) {
    const auto snippet = library.snippet({each});
    snippet->setUuid(toUtf8(snippet->title()));
    snippet->setFormatted(each < u'c' ? 8 : 0);
    if (each > u'a') snippet->setCategory(own.get());
    if (each == u'd') snippet->moveToTrash();
  }
  const auto exported = [&library](const ExportSelection& selection) {
    const auto value = json::parse(document(library, selection));
    std::string names;
    for (const auto& each : value["snippets"]) names += each["title"].get<std::string>();
    for (const auto& each : value["folders"]) names += "/" + each["snippets"].dump();
    return names + (value["excludedApplications"].empty() ? "" : "!");
  };
  EXPECT_EQ(exported(WholeLibrary{}), R"(abc/["b","c"]!)");
  EXPECT_EQ(exported(OneFolder{"F"}), R"(bc/["b","c"])");
  EXPECT_EQ(exported(OneFolder{codeFolder->uuid()}), "ab");
  EXPECT_EQ(exported(ChosenSnippets{{"c", "a"}}), "ca");
  EXPECT_EQ(exported(ChosenSnippets{}), "");
  EXPECT_EQ(exported(ChosenSnippets{{"d"}}), "d");
  EXPECT_FALSE(exportText(library.context, OneFolder{"gone"}, ExportFormat::json));
  EXPECT_FALSE(exportText(library.context, ChosenSnippets{{"a", "gone"}}, ExportFormat::json));

  TestLibrary other;
  ASSERT_TRUE(readLibrary(document(library, OneFolder{"F"}), "folder", other.context));
  EXPECT_EQ(other.controller.snippet("c")->category()->uuid(), "F");
}

// Records that two devices gave one uuid, and types of a newer version, would make a document that nobody
// reads.
TEST(JsonExport, WritesADocumentThatCanBeReadWhateverTheLibraryHolds) {
  TestLibrary library;
  for (int i = 0; i < 2; ++i) {
    const auto folder = library.folder(CategoryType::Folder);
    folder->setUuid("F\xFF");
    folder->setExpansionBehavior(77);
    const auto snippet = library.snippet(u"twice");
    snippet->setUuid("S\xFF");
    snippet->setFormatted(5);
    snippet->setCategory(folder.get());
  }
  library.app("");
  const auto written = document(library);
  TestLibrary copy;
  const auto report = readLibrary(written, "written", copy.context);
  ASSERT_TRUE(report) << report.error().message;
  EXPECT_EQ(document(copy), written);
  const auto folders = copy.context.fetch<QLCategory>({}).value();
  ASSERT_EQ(folders.size(), 2U);
  for (const auto& each : folders) {
    EXPECT_EQ(each->snippets().size(), 1U);
    EXPECT_EQ(each->expansionBehavior(), static_cast<std::int64_t>(ExpansionBehavior::Disabled));
  }
}

}  // namespace
}  // namespace quorlo
