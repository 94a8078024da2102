#pragma once

#include "store/context/predicate.h"

#include <string_view>

namespace quorlo {

// Neither in the trash nor in a shared folder: "(deletionDate == nil AND (category == nil OR
// category.sourceType != 20))".
const Predicate& liveClause();

// Outside shared folders, in the trash or not: "category == nil OR category.sourceType != 20".
const Predicate& outsideSharedFolders();

// "(abbreviation == %@) AND " and the live clause.
Predicate liveAbbreviation(std::u16string_view abbreviation);

}  // namespace quorlo
