#include "import/export/library_export.h"

#include "import/export/export_library.h"
#include "platform/background_queue.h"
#include "platform/main_queue.h"
#include "store/context/managed_object_context.h"

#include <cassert>
#include <utility>

namespace quorlo {

LibraryExport::LibraryExport(Dependencies dependencies) : its_(std::move(dependencies)) {}

LibraryExport::~LibraryExport() {
  cancel();
}

void LibraryExport::start(ExportSelection selection, ExportFormat format, std::filesystem::path file,
                          Completion completion) {
  assert(!isRunning_);
  isRunning_ = true;
  progress_ = std::make_shared<WorkProgress>();
  auto finish = life_.guard([this, completion = std::move(completion)](const Result<ExportReport>& result) {
    isRunning_ = false;
    completion(result);
  });
  if (const auto saved = its_.mainContext.save(); !saved) {
    return its_.mainQueue.run([finish, error = saved.error()]() mutable { finish(error); });
  }
  its_.backgroundQueue.run([selection = std::move(selection), format, file = std::move(file),
                            open = its_.openContext, progress = progress_, &mainQueue = its_.mainQueue,
                            finish] {
    const auto context = open();
    const auto result = context ? exportToFile(*context.value(), selection, format, file, *progress)
                                : Result<ExportReport>(context.error());
    mainQueue.run([finish, result]() mutable { finish(result); });
  });
}

}  // namespace quorlo
