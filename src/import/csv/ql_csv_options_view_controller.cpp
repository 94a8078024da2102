#include "import/csv/ql_csv_options_view_controller.h"

#include "app/settings/settings_controller.h"
#include "base/localized.h"
#include "base/log.h"
#include "import/csv/csv_file.h"
#include "import/csv/csv_notices.h"
#include "import/csv/record_log.h"
#include "import/csv/separators.h"
#include "import/file_bytes.h"
#include "platform/background_queue.h"
#include "platform/main_queue.h"
#include "store/localized_format.h"
#include "text/utf.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorlo {
namespace {

using Files = std::vector<std::filesystem::path>;

struct ReadTable {
  std::shared_ptr<const DecodedText> text;
  char16_t likeliestSeparator;
};

Result<ReadTable> readTable(const std::filesystem::path& file, WorkProgress& progress) {
  auto read = readCsvText(file, progress);
  if (!read) return read.error();
  auto text = std::make_shared<const DecodedText>(std::move(read).value());
  const auto separator = likeliestSeparator(text->text);
  return ReadTable{std::move(text), separator};
}

// The first file's text has been read already.
Result<std::shared_ptr<const ImportData>> makeRecords(const Files& files, const DecodedText& first,
                                                      const CsvMapping& mapping, WorkProgress& progress) {
  auto all = std::make_shared<ImportData>();
  const auto count = static_cast<double>(files.size());
  for (std::size_t i = 0; i < files.size(); ++i) {
    WorkProgress part(progress, static_cast<double>(i) / count, static_cast<double>(i + 1) / count);
    auto read =
        i == 0 ? readCsvRecords(files[i], first, mapping, part) : readCsvFile(files[i], mapping, part);
    if (!read) return read.error();
    auto records = std::move(read).value();
    std::ranges::move(records.snippets, std::back_inserter(all->snippets));
    std::ranges::move(records.notices, std::back_inserter(all->notices));
  }
  return std::shared_ptr<const ImportData>(std::move(all));
}

std::u16string questionOf(CsvDoubt doubt) {
  switch (doubt) {
    case CsvDoubt::none:
      return {};
    case CsvDoubt::header:
      return localized(u"Does the first row have the names of the columns, or is it a snippet?");
    case CsvDoubt::uneven:
      return localized(u"The rows have different numbers of fields. Choose the separator and the columns.");
    case CsvDoubt::columns:
    case CsvDoubt::tooMany:
      return localized(u"Not all columns are known by their names. Choose which is which.");
  }
  return {};
}

}  // namespace

QLCSVOptionsViewController::QLCSVOptionsViewController(const Dependencies& dependencies,
                                                       Files importedCSVURLs, ImportRecords importRecords)
    : its_(dependencies),
      importedCSVURLs_(std::move(importedCSVURLs)),
      importRecords_(std::move(importRecords)) {
  fillPopUpButtons();
}

QLCSVOptionsViewController::~QLCSVOptionsViewController() {
  callOff();
}

template <class Work, class Done>
void QLCSVOptionsViewController::inBackground(Work work, Done done) {
  callOff();
  work_ = std::make_shared<WorkProgress>();
  auto finish = life_.guard([this, done = std::move(done)](auto& outcome) {
    work_.reset();
    done(std::move(outcome));
  });
  its_.background.run([&queue = its_.queue, progress = work_, work = std::move(work), finish] {
    if (progress->isCancelled()) return;
    const auto outcome = std::make_shared<decltype(work(*progress))>(work(*progress));
    if (progress->isCancelled()) return;  // what it has made goes here, off the main thread
    queue.run([progress, outcome, finish]() mutable {
      if (!progress->isCancelled()) finish(*outcome);
    });
  });
}

void QLCSVOptionsViewController::callOff() {
  if (work_) work_->cancel();
  work_.reset();
}

void QLCSVOptionsViewController::viewDidAppear() {
  inBackground(
      [file = importedCSVURLs_.front()](WorkProgress& progress) { return readTable(file, progress); },
      [this](Result<ReadTable> read) {
        if (!read) return fail(read.error());
        text_ = read.value().text;
        if (!separatorIsChosen_) {
          const auto* const likeliest = std::ranges::find(kSeparators, read.value().likeliestSeparator);
          separator_ =
              likeliest == kSeparators.end() ? 0 : static_cast<std::size_t>(likeliest - kSeparators.begin());
        }
        parseAgain();
      });
  observers_.notify();
}

void QLCSVOptionsViewController::changeSeperator(std::size_t segment) {
  if (importCSVSnippets_ || segment >= kSeparators.size()) return;
  separator_ = segment;
  separatorIsChosen_ = true;
  parseAgain();
}

void QLCSVOptionsViewController::setHasHeader(bool hasHeader) {
  if (importCSVSnippets_) return;
  hasHeader_ = hasHeader;
  hasHeaderIsChosen_ = true;
  parseAgain();
}

// The beginning is shown as soon as it is known; then the rest is looked through.
void QLCSVOptionsViewController::parseAgain() {
  if (text_) {
    previewIsCurrent_ = false;
    findings_.reset();
    error_.clear();
    auto open = mapping();
    if (!hasHeaderIsChosen_) open.hasHeader.reset();
    inBackground([text = text_, open](WorkProgress&) { return csvPreview(text->text, open); },
                 [this](Result<CsvPreview> preview) { didParseBeginning(std::move(preview)); });
  }
  observers_.notify();
}

void QLCSVOptionsViewController::didParseBeginning(Result<CsvPreview> preview) {
  previewIsCurrent_ = preview.ok();
  auto error = preview ? Error{} : preview.error();
  preview_ = preview ? std::move(preview).value() : CsvPreview();
  if (previewIsCurrent_) hasHeader_ = preview_.hasHeader;
  fillPopUpButtons();
  if (!previewIsCurrent_) return failToParse(error);
  examine();
  observers_.notify();
}

void QLCSVOptionsViewController::examine() {
  inBackground([text = text_, mapping = mapping()](
                   WorkProgress& progress) { return examineRows(text->text, mapping, progress); },
               [this](Result<CsvFindings> findings) {
                 if (!findings) return failToParse(findings.error());
                 findings_ = std::move(findings).value();
                 observers_.notify();
               });
}

void QLCSVOptionsViewController::fillPopUpButtons() {
  std::vector<std::u16string> items{localized(u"None"), u""};
  std::ranges::copy(preview_.headers, std::back_inserter(items));
  const auto& likely = preview_.guess.columns;
  const std::array likelyColumns{likely.title, likely.abbreviation, likely.text};
  for (const auto role : {title, abbreviation, text}) {
    auto column = chosenColumns_[role].value_or(likelyColumns[role]);
    if (column && *column >= preview_.headers.size()) column = likelyColumns[role];
    popUpButtons_[role] = {items, column ? PopUpButton::kFirstColumnItem + *column : PopUpButton::kNoneItem};
  }
}

void QLCSVOptionsViewController::select(Role role, std::size_t item) {
  auto& button = popUpButtons_[role];
  if (importCSVSnippets_ || item == PopUpButton::kSeparatorItem || item >= button.items.size()) return;
  button.selectedIndex = item;
  chosenColumns_[role] = button.selectedColumn();
  if (previewIsCurrent_) examine();
  observers_.notify();
}

void QLCSVOptionsViewController::confirmOptions() {
  if (!canConfirm()) return;
  importCSVSnippets_ = true;
  error_.clear();
  const bool isDebugging = its_.settings.debugModeEnabled();
  if (isDebugging) logColumns(selectedColumns());
  inBackground(
      [files = importedCSVURLs_, text = text_, mapping = mapping(), isDebugging](WorkProgress& progress) {
        auto records = makeRecords(files, *text, mapping, progress);
        if (isDebugging && records) logRecords(*records.value(), mapping.columns.value(), progress);
        return records;
      },
      [this](Result<std::shared_ptr<const ImportData>> records) {
        if (!records) return fail(records.error());
        importedRecords_ = std::move(records).value();
        isClosed_ = true;
        const auto importRecords = importRecords_;  // outlives the controller
        observers_.notify();
        importRecords(importedRecords_, importOptions_);
      });
  observers_.notify();
}

void QLCSVOptionsViewController::cancel() {
  callOff();
  importCSVSnippets_ = false;
  isClosed_ = true;
  observers_.notify();
}

// `reason` is part of a sentence.
void QLCSVOptionsViewController::failToParse(const Error& reason) {
  previewIsCurrent_ = false;
  fail(cannotRead(importedCSVURLs_.front(), toUtf16(reason.message)));
}

void QLCSVOptionsViewController::fail(const Error& error) {
  importCSVSnippets_ = false;
  error_ = toUtf16(error.message);
  observers_.notify();
}

CsvMapping QLCSVOptionsViewController::mapping() const {
  return {kSeparators[separator_], hasHeader_, selectedColumns()};
}

std::u16string QLCSVOptionsViewController::urlTextField() const {
  const auto first = toUtf16(importedCSVURLs_.front().string());
  if (importedCSVURLs_.size() == 1) return first;
  return localizedFormat(u"%@ and %@ more", first, toUtf16(std::to_string(importedCSVURLs_.size() - 1)));
}

QLCSVOptionsViewController::ProgressIndicator QLCSVOptionsViewController::progressIndicator() const {
  return work_ ? ProgressIndicator{true, work_->fraction()} : ProgressIndicator{};
}

std::optional<std::size_t> QLCSVOptionsViewController::rowCount() const {
  return findings_ ? std::optional(findings_->rows) : std::nullopt;
}

CsvColumns QLCSVOptionsViewController::selectedColumns() const {
  return {popUpButtons_[title].selectedColumn(), popUpButtons_[abbreviation].selectedColumn(),
          popUpButtons_[text].selectedColumn()};
}

std::u16string QLCSVOptionsViewController::notice() const {
  if (!text_) return {};
  auto notices = csvNotices(importedCSVURLs_.front(), text_->encoding, selectedColumns(),
                            findings_.value_or(CsvFindings()));
  if (preview_.headers.size() < preview_.columnCount) {
    notices.push_back(localizedFormat(u"The table has %d columns; the first thousand are shown.",
                                      static_cast<std::int64_t>(preview_.columnCount)));
  }
  std::u16string joined;
  for (const auto& each : notices) joined += (joined.empty() ? u"" : u"\n") + each;
  return joined;
}

// Until the user has chosen a column or said whether there is a header.
std::u16string QLCSVOptionsViewController::question() const {
  const bool isAnswered = hasHeaderIsChosen_ || std::ranges::any_of(chosenColumns_, [](const auto& each) {
                            return each.has_value();
                          });
  return previewIsCurrent_ && !isAnswered ? questionOf(preview_.guess.doubt) : std::u16string();
}

bool QLCSVOptionsViewController::canConfirm() const {
  const bool hasRows = !preview_.rows.empty() || rowCount().value_or(0) > 0;
  return previewIsCurrent_ && hasRows && selectedColumns() != CsvColumns{} && !importCSVSnippets_ &&
         !isClosed_;
}

}  // namespace quorlo
