#include "import/export/library_csv.h"

#include "base/localized.h"
#include "import/export/csv_field.h"
#include "import/export/export_run.h"
#include "import/export/exported_records.h"
#include "import/export/exported_text.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace quorlo {
namespace {

constexpr char16_t kPicture = 0xFFFC;
constexpr std::string_view kReplacement = "\uFFFD";

// What stays of a rich text without formats: its characters, but for those that stand for pictures.
struct PlainText {
  std::u16string characters;
  bool hasLostFormats = false;
  bool hasLostPictures = false;
};

PlainText plainText(const AttributedString& text) {
  PlainText plain;
  text.forEachRun([&](const AttributedString::Run& run) {
    std::u16string characters = text.string().substr(run.range.location, run.range.length);
    if (run.attributes.image) {
      plain.hasLostPictures = true;
      std::erase(characters, kPicture);
    } else if (!run.attributes.isPlain()) {
      plain.hasLostFormats = true;
    }
    plain.characters += characters;
  });
  return plain;
}

// A table with a NUL is none to most programs, and half a surrogate pair is not UTF-8.
bool fitsTable(std::u16string_view value) {
  return isWellFormed(value) && value.find(u'\0') == value.npos;
}

std::string tableText(std::u16string_view value) {
  auto text = toUtf8(value);
  for (auto place = text.find('\0'); place != text.npos; place = text.find('\0', place)) {
    text.replace(place, 1, kReplacement);
  }
  return text;
}

class CsvExport {
 public:
  explicit CsvExport(ExportRun& run) : run_(run) {}

  void writeRow(const QLSnippet& snippet) {
    loses_ = {};
    const auto text = plainText(exportedText(snippet, run_));
    std::string row = field(snippet.title(), CsvPlace::first) + ',';
    row += field(snippet.abbreviation(), CsvPlace::middle) + ',';
    row += field(text.characters, CsvPlace::last) + '\n';
    run_.write(row);

    if (text.hasLostFormats) run_.warn(snippet, localized(u"A table cannot hold its formatting."));
    if (text.hasLostPictures) run_.warn(snippet, localized(u"A table cannot hold its pictures."));
    if (text.characters.empty() && !snippet.abbreviation().empty()) {
      run_.warn(snippet, localized(u"It has no text for a table; Quorlo does not read such a row back."));
    }
    if (loses_.quotes) {
      run_.warn(
          snippet,
          localized(
              u"Its quotation marks were doubled, as tables have them; Quorlo reads them back doubled."));
    }
    if (loses_.characters) {
      run_.warn(snippet, localized(u"It holds characters that a table cannot hold; they were replaced."));
    }
  }

 private:
  struct Losses {
    bool quotes = false;
    bool characters = false;
  };

  std::string field(const std::u16string& value, CsvPlace place) {
    auto field = csvField(tableText(value), place);
    loses_.quotes |= !field.readsBack;
    loses_.characters |= !fitsTable(value);
    return std::move(field.text);
  }

  ExportRun& run_;
  Losses loses_;  // of the present row
};

}  // namespace

void writeLibraryCsv(const ExportedRecords& records, ExportRun& run) {
  CsvExport csv(run);
  run.write("title,abbreviation,text\n");
  for (const auto& each : records.snippets) {
    if (!run.nextSnippet()) return;
    csv.writeRow(*each);
  }
}

}  // namespace quorlo
