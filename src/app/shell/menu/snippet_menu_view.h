#pragma once

#include "app/shell/menu/menu_item.h"
#include "platform/key_codes.h"
#include "store/context/entity.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace quorlo {

// The snippet menu on the screen: a search field over a list of items, in which the user moves about by
// mouse and keys. Main thread.
class SnippetMenuView {
 public:
  // What the user does in the open menu.
  struct Events {
    std::function<void(const std::u16string& searchString)> searchStringDidChange;
    // By click or Return. The flags hold kOption and kCommand where these are held (on a PC keyboard Alt and
    // Ctrl).
    std::function<void(ObjectID snippet, ModifierFlags flags)> chooseSnippet;
    std::function<void(ObjectID snippet)> copySnippet;  // the highlighted one
    std::function<void(MenuCommand)> perform;
    // Escape. The menu stays until close().
    std::function<void()> cancel;
    // The menu has gone by itself: the user clicked elsewhere or another window took the focus. Not called
    // after close().
    std::function<void()> menuDidClose;
  };

  virtual ~SnippetMenuView() = default;

  // Set once, before the menu is opened first.
  virtual void setEvents(Events events) = 0;

  // Shows the menu with an empty search field, which has the keyboard focus as soon as the window has it;
  // `items` are those of menuItems(place, ...). An open menu is moved.
  virtual void open(MenuPlace place, const std::vector<MenuItem>& items) = 0;

  // Replaces the items, leaving the search field as it is.
  virtual void setItems(const std::vector<MenuItem>& items) = 0;

  // Highlights the first snippet, if there is one, without moving the pointer.
  virtual void highlightFirstResult() = 0;

  virtual void makeSearchFieldFirstResponder() = 0;

  virtual void close() = 0;

  // How the display server names the window.
  virtual std::uintptr_t nativeWindow() const = 0;
};

}  // namespace quorlo
