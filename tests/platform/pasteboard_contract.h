#pragma once

#include "platform/pasteboard.h"

#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorlo {

// Lets the main queue run until the condition holds; false when it never does.
using RunUntil = std::function<bool(const std::function<bool()>&)>;

inline PasteboardCopy copyOf(Pasteboard& pasteboard, const RunUntil& runUntil) {
  bool mayBeReplaced = false;
  std::optional<PasteboardCopy> result;
  pasteboard.read({[&] { mayBeReplaced = true; },
                   [&](PasteboardCopy copy) {
                     EXPECT_TRUE(mayBeReplaced) << "the steps came in the wrong order";
                     result = std::move(copy);
                   }});
  EXPECT_FALSE(mayBeReplaced || result) << "a step was called inside the call";
  EXPECT_TRUE(runUntil([&] { return result.has_value(); }));
  return result.value_or(PasteboardCopy());
}

inline std::vector<PasteboardItem> itemsOn(Pasteboard& pasteboard, const RunUntil& runUntil) {
  return copyOf(pasteboard, runUntil).items;
}

inline PasteboardContents textContents(std::string_view utf8) {
  PasteboardItem item;
  item.setText(utf8);
  return {{item}, {}, false};
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
  const auto copy = copyOf(pasteboard, runUntil);
  pasteboard.setContents(textContents("later"));
  EXPECT_EQ(copy.items.at(0).text(), "Grüße");
  EXPECT_EQ(itemsOn(pasteboard, runUntil).at(0).text(), "later");
  pasteboard.setContents({});
  const auto empty = copyOf(pasteboard, runUntil);
  EXPECT_TRUE(empty.items.empty() && empty.isWhole());
}

// `copyElsewhere` makes another program replace the contents, and returns when the change count tells.
inline void expectOnlyUnchangedContentsToBeReplaced(
    Pasteboard& pasteboard, const std::function<void(std::string_view)>& copyElsewhere,
    const RunUntil& runUntil) {
  pasteboard.setContents(textContents("piece"));
  const auto own = pasteboard.changeCount();
  EXPECT_TRUE(pasteboard.setContentsIfUnchanged(textContents("given back"), own));
  EXPECT_FALSE(pasteboard.setContentsIfUnchanged(textContents("late"), own));
  EXPECT_EQ(itemsOn(pasteboard, runUntil).at(0).text(), "given back");

  copyElsewhere("the user's");
  EXPECT_FALSE(pasteboard.setContentsIfUnchanged(textContents("late"), own + 1));
  const auto copy = copyOf(pasteboard, runUntil);
  EXPECT_EQ(copy.items.at(0).text(), "the user's");
  EXPECT_EQ(copy.changeCount, pasteboard.changeCount());
  EXPECT_TRUE(pasteboard.setContentsIfUnchanged(textContents("next piece"), copy.changeCount));
  EXPECT_EQ(itemsOn(pasteboard, runUntil).at(0).text(), "next piece");
}

}  // namespace quorlo
