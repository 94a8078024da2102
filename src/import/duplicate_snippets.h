#pragma once

#include "text/attributed_string.h"

#include <string>
#include <string_view>
#include <unordered_set>

namespace quorlo {

class ManagedObjectContext;
class QLSnippet;

// Which snippets have the same title and text as another one: the same characters and the same pictures,
// however they are formatted. Each question costs as much as its text is long, whatever the library's size.
// On the context's thread.
class DuplicateSnippets {
 public:
  // Knows the snippets of the context outside the trash.
  explicit DuplicateSnippets(const ManagedObjectContext& context);

  // Null when there is none.
  const QLSnippet* find(std::u16string_view title, const AttributedString& text) const;
  void add(const QLSnippet& snippet);

 private:
  struct Entry {
    std::u16string_view title;
    std::u16string_view text;
    std::string pictures;  // a digest of their bytes
    const QLSnippet* snippet;

    bool operator==(const Entry& other) const {
      return title == other.title && text == other.text && pictures == other.pictures;
    }
  };
  struct Hash {
    std::size_t operator()(const Entry& entry) const;
  };

  std::unordered_set<Entry, Hash> entries_;
};

}  // namespace quorlo
