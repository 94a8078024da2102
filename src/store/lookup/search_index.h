#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

class QLSnippet;

// The searched texts of all snippets of a context in the form of foldCase, in one block that is looked
// through many times faster than the records. Made by the first search; what changes afterwards is read
// again by the next one.
class SearchIndex {
 public:
  bool isBuilt() const { return isBuilt_; }

  // Every snippet, before the first search.
  void build(const std::vector<QLSnippet*>& snippets);

  // The snippet came into the context, or one of its texts has changed.
  void noteChange(QLSnippet& snippet);
  void remove(QLSnippet& snippet);

  // Every snippet that has a text which contains the needle (in the form of foldCase, not empty), and
  // perhaps some that have none, in no order.
  std::vector<QLSnippet*> candidates(std::u16string_view foldedNeedle);

 private:
  struct Entry {
    QLSnippet* snippet;  // null for a text that counts no more
    std::size_t end;     // in the block
  };

  void append(QLSnippet& snippet);
  void readAgain();
  void dropDeadTexts();

  std::string block_;  // UTF-8
  std::vector<Entry> entries_;
  std::size_t deadBytes_ = 0;
  std::vector<std::weak_ptr<QLSnippet>> changed_;
  bool isBuilt_ = false;
};

}  // namespace quorlo
