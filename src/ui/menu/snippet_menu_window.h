#pragma once

#include "app/shell/menu/snippet_menu_view.h"

#include <memory>

namespace quorlo {

class MouseMonitor;

// The snippet menu as a window without a frame that takes the keyboard: the search field, the results, which
// scroll, and the fixed items, which stay in view. Made once and kept, so that it opens at once. Needs the
// QApplication.
class SnippetMenuWindow final : public SnippetMenuView {
 public:
  // A click on the desktop or a panel moves no focus: `mouse`, which must outlive the window, tells of those.
  explicit SnippetMenuWindow(MouseMonitor& mouse);
  ~SnippetMenuWindow() override;

  void setEvents(Events events) override;
  void open(MenuPlace place, const std::vector<MenuItem>& items) override;
  void setItems(const std::vector<MenuItem>& items) override;
  void highlightFirstResult() override;
  void makeSearchFieldFirstResponder() override;
  void close() override;
  std::uintptr_t nativeWindow() const override;

 private:
  class Window;

  std::unique_ptr<Window> window_;
};

}  // namespace quorlo
