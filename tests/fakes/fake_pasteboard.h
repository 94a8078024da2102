#pragma once

#include "platform/main_queue.h"
#include "platform/pasteboard.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {

class FakePasteboard : public Pasteboard {
 public:
  explicit FakePasteboard(MainQueue& queue) : queue_(queue) {}

  void setContents(PasteboardContents contents) override {
    contents_ = std::move(contents);
    ++changeCount_;
  }

  bool setContentsIfUnchanged(PasteboardContents contents, std::int64_t changeCount) override {
    if (changeCount != changeCount_) return false;
    setContents(std::move(contents));
    return true;
  }

  void read(Reading reading) override {
    queue_.run([this, reading = std::move(reading)] {
      PasteboardCopy copy{contents_.items, {}, changeCount_};
      if (loss_) copy = {{}, {{{}, *loss_}}, changeCount_};
      auto complete = [completed = reading.completed, copy = std::move(copy)] { completed(copy); };
      if (ownerIsSlow_) {
        late_.push_back(std::move(complete));
      } else {
        queue_.run(std::move(complete));
      }
      if (reading.contentsMayBeReplaced) reading.contentsMayBeReplaced();
    });
  }

  std::int64_t changeCount() const override { return changeCount_; }

  // As another application's copy command would.
  void copyFromElsewhere(std::string_view text) {
    PasteboardItem item;
    item.setText(text);
    setContents({{item}, {}, false});
  }

  const PasteboardContents& contents() const { return contents_; }

  std::string text() const {
    for (const auto& item : contents_.items) {
      if (auto text = item.text()) return *text;
    }
    return {};
  }

  bool hasMarker(std::string_view type) const { return std::ranges::count(contents_.markers, type) > 0; }

  // The owner hands nothing over.
  void loseCopies(std::optional<PasteboardLoss::Reason> reason) { loss_ = reason; }
  // Copies are completed when `completeCopies` is called.
  void makeOwnerSlow() { ownerIsSlow_ = true; }
  void completeCopies() {
    ownerIsSlow_ = false;
    for (auto& complete : std::exchange(late_, {})) queue_.run(std::move(complete));
  }

 private:
  MainQueue& queue_;
  PasteboardContents contents_;
  std::int64_t changeCount_ = 0;
  std::optional<PasteboardLoss::Reason> loss_;
  bool ownerIsSlow_ = false;
  std::vector<MainQueue::Task> late_;
};

}  // namespace quorlo
