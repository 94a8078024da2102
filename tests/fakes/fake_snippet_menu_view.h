#pragma once

#include "app/shell/menu/snippet_menu_view.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace quorlo {

// A menu in which the test moves and chooses.
class FakeSnippetMenuView : public SnippetMenuView {
 public:
  void setEvents(Events newEvents) override { events = std::move(newEvents); }
  void open(MenuPlace newPlace, const std::vector<MenuItem>& newItems) override {
    isOpen = true;
    place = newPlace;
    highlighted = nullptr;
    items = newItems;
  }
  void setItems(const std::vector<MenuItem>& newItems) override {
    highlighted = nullptr;
    items = newItems;
  }
  void highlightFirstResult() override {
    const auto first = std::ranges::find(items, MenuItem::Kind::snippet, &MenuItem::kind);
    highlighted = first == items.end() ? nullptr : &*first;
  }
  void makeSearchFieldFirstResponder() override {}
  void close() override { isOpen = false; }
  std::uintptr_t nativeWindow() const override { return 77; }

  // What the rows say, from above: headers in brackets, separators as "-".
  std::vector<std::u16string> rows() const {
    std::vector<std::u16string> rows;
    for (const auto& item : items) {
      if (item.kind == MenuItem::Kind::search) {
        rows.emplace_back(u"?");
      } else if (item.kind == MenuItem::Kind::separator) {
        rows.emplace_back(u"-");
      } else {
        rows.push_back(item.kind == MenuItem::Kind::header ? u"[" + item.title + u"]" : item.title);
      }
    }
    return rows;
  }

  // The user's side.
  void type(const std::u16string& text) { events.searchStringDidChange(text); }
  void pressReturn(ModifierFlags flags = 0) {
    if (highlighted != nullptr) events.chooseSnippet(highlighted->snippet->objectID, flags);
  }
  void clickElsewhere() {
    isOpen = false;
    events.menuDidClose();
  }

  Events events;
  bool isOpen = false;
  MenuPlace place = MenuPlace::pointer;
  std::vector<MenuItem> items;
  const MenuItem* highlighted = nullptr;
};

}  // namespace quorlo
