#pragma once

#include "base/result.h"
#include "import/export/export_report.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace quorlo {

class QLSnippet;
class WorkProgress;

// Takes the exported text piece by piece; an error ends the export.
using ExportSink = std::function<Status(std::string_view utf8)>;

// One export under way: where its text goes, how far it has come, what is to be said about it.
class ExportRun {
 public:
  ExportRun(ExportSink sink, WorkProgress& progress, std::size_t snippetCount);

  // False once it was cancelled or the sink has failed; then nothing more needs to be written.
  bool nextSnippet();
  void write(std::string_view utf8);
  void warn(const QLSnippet& snippet, std::u16string message);
  void warn(std::u16string message);
  void setFolderCount(std::size_t count) { report_.folders = count; }
  std::size_t writtenBytes() const { return writtenBytes_; }

  // The end: an error when it was cancelled or something could not be written.
  Result<ExportReport> finish();

 private:
  void flush();

  ExportSink sink_;
  WorkProgress& progress_;
  std::size_t snippetCount_;
  std::string buffer_;
  std::size_t writtenBytes_ = 0;
  Status status_;
  ExportReport report_;
};

}  // namespace quorlo
