#pragma once

#include "platform/main_queue.h"
#include "platform/pasteboard.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace quorlo {

class FakePasteboard : public Pasteboard {
 public:
  explicit FakePasteboard(MainQueue& queue) : queue_(queue) {}

  void setContents(PasteboardContents contents) override {
    contents_ = std::move(contents);
    ++changeCount_;
  }

  void read(ReadCompletion completion) override {
    queue_.run([completion = std::move(completion),
                items = readable_ ? contents_.items : decltype(contents_.items){}] { completion(items); });
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

  // The owner refuses to hand anything over.
  void refuseReads() { readable_ = false; }

 private:
  MainQueue& queue_;
  PasteboardContents contents_;
  std::int64_t changeCount_ = 0;
  bool readable_ = true;
};

}  // namespace quorlo
