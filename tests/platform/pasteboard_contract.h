#pragma once

#include "platform/pasteboard.h"

#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {

// Lets the main queue run until the condition holds; false when it never does.
using RunUntil = std::function<bool(const std::function<bool()>&)>;

inline std::vector<PasteboardItem> itemsOn(Pasteboard& pasteboard, const RunUntil& runUntil) {
  std::optional<std::vector<PasteboardItem>> result;
  pasteboard.read([&](std::vector<PasteboardItem> items) { result = std::move(items); });
  EXPECT_FALSE(result) << "the completion was called inside the call";
  EXPECT_TRUE(runUntil([&] { return result.has_value(); }));
  return result.value_or(std::vector<PasteboardItem>());
}

// Text, HTML and a picture, in one item, marked.
inline PasteboardContents richContents() {
  PasteboardItem item;
  item.setData("text/html", {'<', 'b', '>'});
  item.setText("Grüße");
  item.setData("image/png", {0x89, 0, 0xFF, '\n'});
  return {{item}, {"org.nspasteboard.TransientType"}, true};
}

inline void expectContentsToBeReadBack(Pasteboard& pasteboard, const RunUntil& runUntil) {
  const auto countBefore = pasteboard.changeCount();
  pasteboard.setContents(richContents());
  EXPECT_NE(pasteboard.changeCount(), countBefore);
  const auto items = itemsOn(pasteboard, runUntil);
  ASSERT_EQ(items.size(), 1U);
  EXPECT_THAT(items[0].types(), testing::ElementsAre("text/html", "text/plain;charset=utf-8", "image/png"));
  EXPECT_EQ(items[0].text(), "Grüße");
  EXPECT_EQ(items[0].data("image/png"), (PasteboardData{0x89, 0, 0xFF, '\n'}));
}

inline void expectACopyToOutliveLaterContents(Pasteboard& pasteboard, const RunUntil& runUntil) {
  pasteboard.setContents(richContents());
  std::optional<std::vector<PasteboardItem>> copy;
  pasteboard.read([&](std::vector<PasteboardItem> items) { copy = std::move(items); });
  ASSERT_TRUE(runUntil([&] { return copy.has_value(); }));
  PasteboardItem other;
  other.setText("later");
  pasteboard.setContents({{other}, {}, false});
  EXPECT_EQ(copy->at(0).text(), "Grüße");
  EXPECT_EQ(itemsOn(pasteboard, runUntil).at(0).text(), "later");
  pasteboard.setContents({});
  EXPECT_TRUE(itemsOn(pasteboard, runUntil).empty());
}

}  // namespace quorlo
