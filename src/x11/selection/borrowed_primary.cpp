#include "x11/selection/borrowed_primary.h"

#include <utility>

namespace quorlo {

namespace {

SelectionOwner::Offer offerOf(const SelectionCopy& copy) {
  if (copy.items.empty()) return nullptr;
  std::vector<SelectionOffer::Data> data;
  for (const auto& representation : copy.items.front().representations()) {
    data.push_back(std::make_shared<const PasteboardData>(std::get<PasteboardData>(representation.data)));
  }
  return std::make_shared<SelectionOffer>(offeredTargets({copy.items, {}, false}, copy.forms),
                                          std::move(data));
}

}  // namespace

void BorrowedPrimary::save(const ReadBudget& budget) {
  if (owner_.owns(XCB_ATOM_PRIMARY) || state_ != State::unknown) return;
  state_ = State::asked;
  copyIsWhole_ = false;
  const auto generation = ++generation_;
  const auto mayBeTaken = [this, generation] {
    if (generation != generation_) return;
    state_ = State::mayBeTaken;
    if (!waiting_.empty()) take();
  };
  const auto completed = [this, generation](const SelectionCopy& copy) {
    if (generation == generation_) adopt(copy);
  };
  reader_.read(XCB_ATOM_PRIMARY, budget, {mayBeTaken, completed});
}

void BorrowedPrimary::borrow(const ReadBudget& budget, std::function<void()> borrowed) {
  if (owner_.owns(XCB_ATOM_PRIMARY)) return borrowed();
  waiting_.push_back(std::move(borrowed));
  if (state_ == State::mayBeTaken) return take();
  save(budget);
}

void BorrowedPrimary::take() {
  reader_.taken(XCB_ATOM_PRIMARY);
  owner_.take(XCB_ATOM_PRIMARY, copy_);
  for (auto& borrowed : std::exchange(waiting_, {})) borrowed();
}

void BorrowedPrimary::adopt(const SelectionCopy& copy) {
  copy_ = offerOf(copy);
  copyIsWhole_ = true;
  if (owner_.owns(XCB_ATOM_PRIMARY)) owner_.replaceQuietly(XCB_ATOM_PRIMARY, copy_);
}

void BorrowedPrimary::pastesAreOver() {
  if (copy_ || !copyIsWhole_ || !owner_.owns(XCB_ATOM_PRIMARY)) return;
  owner_.giveUp(XCB_ATOM_PRIMARY);
  state_ = State::unknown;
}

void BorrowedPrimary::ownerChanged() {
  // The copy starts over with the new owner by itself.
  if (state_ == State::asked) return;
  state_ = State::unknown;
  ++generation_;
  copy_.reset();
}

}  // namespace quorlo
