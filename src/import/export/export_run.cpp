#include "import/export/export_run.h"

#include "base/localized.h"
#include "import/work_progress.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <utility>

namespace quorlo {
namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 20;

}  // namespace

ExportRun::ExportRun(ExportSink sink, WorkProgress& progress, std::size_t snippetCount)
    : sink_(std::move(sink)), progress_(progress), snippetCount_(snippetCount) {}

bool ExportRun::nextSnippet() {
  if (!status_) return false;
  if (progress_.isCancelled()) {
    status_ = Error{toUtf8(localized(u"The export was cancelled."))};
    return false;
  }
  progress_.setFraction(static_cast<double>(report_.snippets) / static_cast<double>(snippetCount_));
  ++report_.snippets;
  return true;
}

void ExportRun::write(std::string_view utf8) {
  writtenBytes_ += utf8.size();
  buffer_ += utf8;
  if (buffer_.size() >= kBufferSize) flush();
}

void ExportRun::warn(const QLSnippet& snippet, std::u16string message) {
  report_.warnings.push_back({snippet.displayTitle(), std::move(message)});
}

void ExportRun::warn(std::u16string message) {
  report_.warnings.push_back({{}, std::move(message)});
}

Result<ExportReport> ExportRun::finish() {
  flush();
  if (!status_) return status_.error();
  progress_.setFraction(1);
  return std::move(report_);
}

void ExportRun::flush() {
  if (status_) status_ = sink_(buffer_);
  buffer_.clear();
}

}  // namespace quorlo
