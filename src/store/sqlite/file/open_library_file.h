#pragma once

#include "base/date.h"
#include "base/result.h"
#include "store/library_notice.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <utility>

namespace quorlo {

class ManagedObjectContext;
class SqliteRecordStore;

// The library's file behind the main context of a program that runs for days: whether it is still the one
// that was opened, and what is done when it is not. Main thread.
class OpenLibraryFile {
 public:
  enum class State {
    inPlace,
    moved,        // its name is gone or is another file's
    overwritten,  // another library was written over it
  };

  // The references outlive this. The store is open and loaded.
  OpenLibraryFile(SqliteRecordStore& store, ManagedObjectContext& context, std::filesystem::path directory,
                  std::function<Date()> now);

  // Cheap while nothing was written to the file.
  State look();

  // The file changed less than a second ago: it may still be written by a program that copies it there.
  bool isJustBeingWritten() const;

  // What is saved goes into a kept file, as the new one cannot be opened.
  bool writesElsewhere() const { return rescued_.has_value(); }

  // Keeps what is in memory in a file beside the library's, unsaved changes included, and goes on with the
  // file that has the library's name; where there is none, the library is written back. Nothing is written
  // into the file that was open. Where the new file cannot be opened, the kept one is written to until it
  // can. An error when nothing could be kept: everything is as before, and may be tried again.
  Result<LibraryNotice> recover(State state);

 private:
  using HistoryPlace = std::pair<std::int64_t, std::int64_t>;  // number and timestamp of a transaction

  bool holdsWhatWasSeen();
  void remember();
  Result<LibraryNotice> writeBack();
  Result<std::filesystem::path> rescue(State state);
  Result<LibraryNotice> openNew(std::filesystem::path rescued);

  SqliteRecordStore& store_;
  ManagedObjectContext& context_;
  const std::filesystem::path directory_;
  const std::function<Date()> now_;
  std::filesystem::path file_;                       // which the library's name leads to
  std::pair<std::int64_t, std::uintmax_t> written_;  // when, in nanoseconds, and its size
  std::optional<HistoryPlace> newest_;
  std::optional<std::filesystem::path> rescued_;  // the file that is written to meanwhile
};

}  // namespace quorlo
