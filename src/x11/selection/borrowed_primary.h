#pragma once

#include "x11/selection/selection_owner.h"
#include "x11/selection/selection_reader.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace quorlo {

// PRIMARY, borrowed for pastes into terminals. It is copied before it is taken. While it is borrowed, the
// target of a paste reads the piece and all others what was there before; where nothing was, it is given up
// once the target has read. So it needs no putting back. On the loop's thread.
class BorrowedPrimary {
 public:
  BorrowedPrimary(SelectionOwner& owner, SelectionReader& reader) : owner_(owner), reader_(reader) {}

  // Begins the copy, so that borrowing takes no time later.
  void save(const ReadBudget& budget);
  // Calls when PRIMARY is this program's.
  void borrow(const ReadBudget& budget, std::function<void()> borrowed);
  // No paste from PRIMARY is open.
  void pastesAreOver();
  // Another program has taken PRIMARY, or its owner is gone.
  void ownerChanged();

 private:
  enum class State { unknown, asked, mayBeTaken };

  void take();
  void adopt(const SelectionCopy& copy);

  SelectionOwner& owner_;
  SelectionReader& reader_;
  State state_ = State::unknown;
  std::uint64_t generation_ = 0;  // only the last copy counts
  bool copyIsWhole_ = false;
  SelectionOwner::Offer copy_;  // null while nothing is known to have been in PRIMARY
  std::vector<std::function<void()>> waiting_;
};

}  // namespace quorlo
