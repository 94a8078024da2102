#pragma once

#include "base/date.h"
#include "base/result.h"

namespace quorlo {

class ManagedObjectContext;
class TimeZone;

// What keeps a library in order. Each works on the main context, logs what it finds, does nothing the second
// time, and leaves saving to its caller, but for the purge.

// Deletes the snippets that have been in the trash for 30 days by the calendar of the time zone, to the
// second, and saves.
void purgeTrash(ManagedObjectContext& context, Date now, const TimeZone& timeZone);

// Old libraries hold empty abbreviations where there should be none.
void fixEmptyAbbreviations(ManagedObjectContext& context);

// Old libraries do not tell titles that the user gave from derived ones: every title there is counts as
// given.
void markTitlesAsCustom(ManagedObjectContext& context);

// Gives the user's folders their section, and puts snippets without a folder into All Snippets; an error
// when the library has no such folder.
Status migrateFolders(ManagedObjectContext& context);

// Adds the statistics of all records into the first and deletes the others; makes one where there is none. A
// record whose sum does not fit is kept.
void mergeDuplicateUsers(ManagedObjectContext& context);

// Merges folders that devices made alike; duplicate_folders.h says which those are.
void mergeDuplicateFolders(ManagedObjectContext& context);

// Counts the snippets of every folder into its numberOfSnippets.
void countSnippets(ManagedObjectContext& context);

}  // namespace quorlo
