#pragma once

#include "base/log.h"
#include "store/context/managed_object_context.h"

#include <memory>
#include <string>
#include <vector>

namespace quorlo {

// The records of a fetch; none when it failed, which is logged as `failure`, its message and `ending`.
template <class Record>
std::vector<std::shared_ptr<Record>> loggedFetch(const ManagedObjectContext& context,
                                                 const FetchRequest<Record>& request, const char* failure,
                                                 const char* ending = "") {
  auto found = context.fetch<Record>(request);
  if (found) return std::move(found).value();
  logError(failure + found.error().message + ending);
  return {};
}

// Its first record, or null.
template <class Record>
std::shared_ptr<Record> loggedFetchOfFirst(const ManagedObjectContext& context, FetchRequest<Record> request,
                                           const char* failure) {
  request.fetchLimit = 1;
  auto found = loggedFetch(context, request, failure);
  return found.empty() ? nullptr : std::move(found.front());
}

}  // namespace quorlo
