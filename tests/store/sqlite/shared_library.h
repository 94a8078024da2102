#pragma once

#include "open_library.h"
#include "store/context/background_context.h"
#include "store/description.h"
#include "store/history/persistent_history_fetcher.h"
#include "store/history/remote_changes.h"
#include "test_store.h"

#include <memory>
#include <string>

namespace quorlo {

// A library that is open here, and in another process.
struct SharedLibrary {
  TestStore files;
  OpenLibrary open{files.directory};
  ManagedObjectContext& here = open.context();

  std::unique_ptr<ManagedObjectContext> other(std::string name = "other") const {
    return openBackgroundContext(
               files.file,
               {.name = name + "_context", .transactionAuthor = name, .now = [] { return Date{}; }})
        .value();
  }

  std::shared_ptr<QLSnippet> snippet(std::u16string title, std::u16string abbreviation = {}) {
    auto snippet = here.insert<QLSnippet>();
    snippet->setTitle(std::move(title));
    snippet->setAbbreviation(std::move(abbreviation));
    return snippet;
  }

  // The same record in another context.
  template <class Record>
  static std::shared_ptr<Record> in(ManagedObjectContext& context, const Record& record) {
    return std::static_pointer_cast<Record>(context.record(Record::kEntity, record.rowNumber()));
  }

  // What others have saved since the last time.
  std::vector<HistoryChange> news() {
    const auto found = PersistentHistoryFetcher{open.database(), lastNews_, "main_app", "view_context",
                                                here.writer().session}
                           .fetch()
                           .value();
    if (!found.empty()) lastNews_ = found.back().timestamp;
    return walk(found).records;
  }
  Status refresh() { return here.refresh(news()); }

  // What a program that starts now finds.
  std::string stored() const { return Description::of(*other()); }

 private:
  Date lastNews_ = Date::min();
};

inline AttributedString bold(std::u16string text) {
  TextAttributes attributes;
  attributes.bold = true;
  return {std::move(text), attributes};
}

}  // namespace quorlo
