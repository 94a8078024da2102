#include "app/shell/files/starter_offer.h"

#include "base/log.h"
#include "platform/user_defaults.h"
#include "store/exchange/library_document.h"
#include "store/persistence_controller.h"
#include "store/records/ql_snippet.h"

#include <fmt/format.h>

#include <utility>

namespace quorlo {
namespace {

constexpr const char* kAnsweredKey = "StarterLibraryOfferHasBeenAnswered";

}  // namespace

StarterOffer::StarterOffer(UserDefaults& defaults, PersistenceController& persistence,
                           std::filesystem::path starterLibrary)
    : defaults_(defaults), persistence_(persistence), starterLibrary_(std::move(starterLibrary)) {}

bool StarterOffer::isDue() const {
  if (defaults_.value(DefaultsDomain::standard, kAnsweredKey) != nullptr) return false;
  const auto snippets = persistence_.managedObjectContext().fetch<QLSnippet>({.fetchLimit = 1});
  return snippets && snippets.value().empty();
}

Status StarterOffer::accept() {
  const auto report = readLibraryFile(starterLibrary_, persistence_.managedObjectContext());
  if (!report) return report.error();
  logInfo(fmt::format("{} starter snippets have been added.", report.value().addedSnippets.size()));
  persistence_.save();
  markAsAnswered();
  return {};
}

void StarterOffer::decline() {
  markAsAnswered();
}

void StarterOffer::markAsAnswered() {
  defaults_.setValue(DefaultsDomain::standard, kAnsweredKey, true);
}

}  // namespace quorlo
