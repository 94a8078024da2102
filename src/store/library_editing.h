#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quorlo {

class ManagedObjectContext;
class QLCategory;
class QLSnippet;

// What a user does to the library in its window. Main thread; nothing is saved here.

// An empty snippet. In a folder of the user's own it goes there; in a built-in folder of one type it gets
// that type, else `format` (the raw value of a SnippetType).
std::shared_ptr<QLSnippet> addSnippet(ManagedObjectContext& context, QLCategory* folder, std::int64_t format);

// All that the snippet holds but its abbreviation and its use count.
std::shared_ptr<QLSnippet> duplicate(const QLSnippet& snippet);

// Whether snippets can be put into the folder; the built-in ones only collect what is elsewhere.
bool takesSnippets(const QLCategory& folder);

// The uuid of the folder that was chosen for the snippet; empty in All Snippets, where the snippets without a
// folder belong and repairs put them.
std::string folderOfChoice(const QLSnippet& snippet);

// Whether snippets can be moved to the folder: one that takes them, or the trash.
bool isDestinationOfMove(const QLCategory& folder);
// To such a folder. Out of the trash they are live again.
void moveSnippets(const std::vector<std::shared_ptr<QLSnippet>>& snippets, QLCategory& folder);

// A folder of the user's own, behind the others.
std::shared_ptr<QLCategory> addFolder(ManagedObjectContext& context, std::u16string title);

}  // namespace quorlo
