#include "ui/menu/snippet_menu_window.h"

#include "platform/mouse_monitor.h"
#include "ui/menu/menu_list.h"
#include "ui/menu/menu_placement.h"
#include "ui/menu/submenu_window.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace quorlo {
namespace {

using Reveal = MenuList::Reveal;

constexpr int kLinesWide = 26;       // the width of the menu, in heights of a line
constexpr int kLinesOfResults = 28;  // as many as are seen at once
constexpr int kFieldMargin = 6;
// So long the pointer may take on its way from a row to the row's submenu across other rows.
constexpr std::chrono::milliseconds kWayToSubmenu{250};
// So long the press that opened the menu may take to come in as a click elsewhere, too.
constexpr std::chrono::milliseconds kSameClick{200};

ModifierFlags flagsOf(Qt::KeyboardModifiers modifiers) {
  ModifierFlags flags = 0;
  if (modifiers.testFlag(Qt::AltModifier)) flags |= modifier::kOption;
  if (modifiers.testFlag(Qt::ControlModifier)) flags |= modifier::kCommand;
  return flags;
}

}  // namespace

class SnippetMenuWindow::Window : public QWidget {
 public:
  explicit Window(MouseMonitor& mouse)
      : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint), mouse_(mouse) {
    setWindowTitle(QStringLiteral("Quorlo"));
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);

    field_->setFrame(false);
    field_->setClearButtonEnabled(true);
    field_->addAction(symbol(u"magnifyingglass"), QLineEdit::LeadingPosition);
    field_->installEventFilter(this);
    connect(field_, &QLineEdit::textChanged, &connections_, [this](const QString& text) {
      if (events_.searchStringDidChange) events_.searchStringDidChange(text.toStdU16String());
    });
    for (auto* const list : {results_, fixed_, &submenu_->list()}) list->setEvents(eventsOf(*list));
    submenuEnd_.setSingleShot(true);
    submenuEnd_.setInterval(kWayToSubmenu);
    connect(&submenuEnd_, &QTimer::timeout, &connections_, [this] {
      if (highlighted_ != &submenu_->list()) submenu_->hide();
    });

    column_->setContentsMargins(1, 1, 1, kMenuPadding);
    column_->setSpacing(0);
    column_->addWidget(field_);
    column_->addSpacing(kMenuPadding);
    column_->addWidget(results_, 1);
    column_->addWidget(fixed_);
    winId();  // the display server's window
  }

  void setEvents(Events events) { events_ = std::move(events); }

  void openAt(MenuPlace place, const std::vector<MenuItem>& items) {
    translate();
    column_->removeWidget(fixed_);
    column_->insertWidget(place == MenuPlace::statusItem ? column_->indexOf(results_) : -1, fixed_);
    lists_ = place == MenuPlace::statusItem ? std::array{fixed_, results_} : std::array{results_, fixed_};
    {
      const QSignalBlocker silent(field_);
      field_->clear();
    }
    highlight(nullptr, -1);
    showItems(items);
    fit();
    field_->setFocus();
    wasActive_ = false;
    sinceOpening_.start();
    clicks_ = mouse_.observeMouseDown([this, place](MouseButton button) {
      if (button != MouseButton::left) return;
      const auto pointer = QCursor::pos();
      if (geometry().contains(pointer) || isOnSubmenu(pointer)) return;
      if (place == MenuPlace::statusItem && !sinceOpening_.hasExpired(kSameClick.count())) return;
      leave();
    });
    show();
    raise();
    activateWindow();
  }

  void showItems(const std::vector<MenuItem>& items) {
    std::vector<MenuItem> fixed;
    std::vector<MenuItem> results;
    for (const auto& item : items) {
      if (item.kind == MenuItem::Kind::search) continue;
      (item.tag == kFixedItemTag ? fixed : results).push_back(item);
    }
    auto* const list = highlighted_;
    const int row = list ? list->highlightedRow() : -1;
    results_->setItems(results);
    fixed_->setItems(fixed);
    fixed_->setFixedHeight(fixed_->contentHeight());
    if (submenu_->isVisible()) submenu_->list().setItems(submenuItems());
    if (list && row < list->rowCount() && list->item(row).isEnabled()) {
      highlight(list, row);
    } else {
      highlight(nullptr, -1);
    }
  }

  void highlightFirstResult() {
    const int row = results_->firstEnabledRow();
    highlight(row < 0 ? nullptr : results_, row);
  }

  void focusField() { field_->setFocus(); }

  void disappear() {
    wasActive_ = false;  // hiding takes the focus away, which is no wish of the user
    clicks_.reset();
    submenuEnd_.stop();
    submenu_->hide();
    hide();
  }

 protected:
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() == QEvent::KeyPress) return handleKey(*static_cast<const QKeyEvent*>(event));
    return QWidget::eventFilter(object, event);
  }

  void changeEvent(QEvent* event) override {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !isVisible()) return;
    if (isActiveWindow()) {
      wasActive_ = true;
    } else if (wasActive_) {
      leave();
    }
  }

  // Accepted, since a window that refuses to close keeps the whole program from ending.
  void closeEvent(QCloseEvent* /*event*/) override {
    if (events_.cancel) events_.cancel();
  }

  void paintEvent(QPaintEvent* /*event*/) override {
    paintMenuBorder(*this);
    QPainter painter(this);
    painter.setOpacity(0.4);
    painter.fillRect(1, field_->geometry().bottom() + 1, width() - 2, 1, palette().color(QPalette::Mid));
  }

 private:
  // The user's language may have changed, the palette, too.
  void translate() {
    const auto search = localizedText(u"Search Snippets");
    field_->setPlaceholderText(search);
    field_->setAccessibleName(search);
    results_->setAccessibleName(localizedText(u"Results"));
    fixed_->setAccessibleName(QStringLiteral("Quorlo"));
  }

  // Keeps its height while it is open, so that nothing jumps while the user types.
  void fit() {
    const auto pointer = QCursor::pos();
    const auto room = screenAt(pointer).availableGeometry();
    const int line = fontMetrics().lineSpacing();
    field_->setFixedHeight(line + 3 * kFieldMargin);
    const int width = std::max(kLinesWide * line, fixed_->contentWidth());
    const int others = field_->height() + fixed_->height() + 2 * kMenuPadding + 1;
    const int height = std::min(results_->contentHeight(), kLinesOfResults * line) + others;
    setFixedSize(std::min(width, room.width()), std::min(height, room.height()));
    move(placeAtPointer(pointer, size(), room, layoutDirection()));
  }

  bool isOnSubmenu(const QPoint& place) const {
    return submenu_->isVisible() && submenu_->geometry().contains(place);
  }

  void leave() {
    disappear();
    if (events_.menuDidClose) events_.menuDidClose();
  }

  bool handleKey(const QKeyEvent& event) {
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    switch (event.key()) {
      case Qt::Key_Return:
      case Qt::Key_Enter:
        activate(modifiers);
        return true;
      case Qt::Key_Escape:
        goBack();
        return true;
      case Qt::Key_Tab:
        return step(1);
      case Qt::Key_Backtab:
        return step(-1);
      case Qt::Key_C:
        return modifiers == Qt::ControlModifier && !field_->hasSelectedText() && copy();
      default:
        return modifiers == Qt::NoModifier && moveHighlight(event.key());
    }
  }

  bool moveHighlight(int key) {
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    switch (key) {
      case Qt::Key_Down:
        return step(1);
      case Qt::Key_Up:
        return step(-1);
      case Qt::Key_PageDown:
        return page(1);
      case Qt::Key_PageUp:
        return page(-1);
      case Qt::Key_Home:
        return highlight(results_, results_->firstEnabledRow());
      case Qt::Key_End:
        return highlight(results_, results_->lastEnabledRow());
      case Qt::Key_Right:
        return isRightToLeft ? closeSubmenu() : enterSubmenu();
      case Qt::Key_Left:
        return isRightToLeft ? enterSubmenu() : closeSubmenu();
      default:
        return false;
    }
  }

  // Always true: the key is used up even where there is nothing to move to.
  bool highlight(MenuList* list, int row, Reveal reveal = Reveal::yes) {
    for (auto* const other : {results_, fixed_, &submenu_->list()}) {
      if (other != list) other->setHighlightedRow(-1, reveal);
    }
    highlighted_ = row < 0 ? nullptr : list;
    if (list) list->setHighlightedRow(row, reveal);
    if (submenu_->isVisible() && list != &submenu_->list() && !hasSubmenu()) submenuEnd_.start();
    return true;
  }

  // From the end of one list to the other one, round and round.
  bool step(int direction) {
    if (highlighted_ == &submenu_->list()) return stepInSubmenu(direction);
    submenu_->hide();
    const auto here = std::ranges::find(lists_, highlighted_);
    if (here != lists_.end()) {
      const int row = highlighted_->highlightedRow();
      const int next = highlighted_->enabledRow(row, direction);
      if (next != row) return highlight(highlighted_, next);
    }
    auto* const other = here == lists_.begin() ? lists_[1] : lists_[0];
    auto* const list = other->firstEnabledRow() >= 0 ? other : *here;
    return highlight(list, direction > 0 ? list->firstEnabledRow() : list->lastEnabledRow());
  }

  bool stepInSubmenu(int direction) {
    auto& list = submenu_->list();
    const int row = list.highlightedRow();
    const int next = list.enabledRow(row, direction);
    if (next != row) return highlight(&list, next);
    return highlight(&list, direction > 0 ? list.firstEnabledRow() : list.lastEnabledRow());
  }

  bool page(int direction) {
    auto* const list = highlighted_ ? highlighted_ : results_;
    return highlight(list, list->enabledRow(list->highlightedRow(), direction * list->rowsPerPage()));
  }

  bool hasSubmenu() const {
    return highlighted_ && !highlighted_->item(highlighted_->highlightedRow()).submenu.empty();
  }

  std::vector<MenuItem> submenuItems() const {
    for (int row = 0; row < fixed_->rowCount(); ++row) {
      if (!fixed_->item(row).submenu.empty()) return fixed_->item(row).submenu;
    }
    return {};
  }

  void openSubmenu() {
    submenuEnd_.stop();
    const int row = highlighted_->highlightedRow();
    if (!submenu_->isVisible()) submenu_->openBeside(highlighted_->placeOfRow(row), submenuItems());
  }

  // False leaves the key to the search field.
  bool enterSubmenu() {
    if (!hasSubmenu()) return false;
    openSubmenu();
    return highlight(&submenu_->list(), submenu_->list().firstEnabledRow());
  }

  bool closeSubmenu() {
    if (!submenu_->isVisible()) return false;
    submenu_->hide();
    for (int row = 0; row < fixed_->rowCount(); ++row) {
      if (!fixed_->item(row).submenu.empty()) highlight(fixed_, row);
    }
    return true;
  }

  void goBack() {
    if (closeSubmenu()) return;
    if (!field_->text().isEmpty()) return field_->clear();
    if (events_.cancel) events_.cancel();
  }

  bool copy() {
    const auto* const item = highlightedItem();
    if (!item || !item->snippet) return false;
    if (events_.copySnippet) events_.copySnippet(item->snippet->objectID);
    return true;
  }

  const MenuItem* highlightedItem() const {
    return highlighted_ ? &highlighted_->item(highlighted_->highlightedRow()) : nullptr;
  }

  void activate(Qt::KeyboardModifiers modifiers) {
    const auto* const item = highlightedItem();
    if (!item) return;
    if (const auto& snippet = item->snippet) {
      const auto objectID = snippet->objectID;  // the items may go while the event is handled
      if (events_.chooseSnippet) events_.chooseSnippet(objectID, flagsOf(modifiers));
    } else if (item->command) {
      const auto command = *item->command;
      if (events_.perform) events_.perform(command);
    }
  }

  MenuList::Events eventsOf(MenuList& list) {
    return {[this, &list](int row) {
              highlight(&list, row, Reveal::no);
              if (hasSubmenu()) openSubmenu();
            },
            [this](int) { activate(QApplication::keyboardModifiers()); }};
  }

  MouseMonitor& mouse_;
  Events events_;
  QLineEdit* field_ = new QLineEdit;
  MenuList* results_ = new MenuList(this);
  MenuList* fixed_ = new MenuList(this);
  SubmenuWindow* submenu_ = new SubmenuWindow(this);
  QVBoxLayout* column_ = new QVBoxLayout(this);
  std::array<MenuList*, 2> lists_{results_, fixed_};  // from top to bottom
  MenuList* highlighted_ = nullptr;                   // the list that holds the highlighted row
  QTimer submenuEnd_;
  bool wasActive_ = false;
  QElapsedTimer sinceOpening_;
  Subscription clicks_;
  QObject connections_;  // the last: the end of the widgets must not call back
};

SnippetMenuWindow::SnippetMenuWindow(MouseMonitor& mouse) : window_(std::make_unique<Window>(mouse)) {}

SnippetMenuWindow::~SnippetMenuWindow() = default;

void SnippetMenuWindow::setEvents(Events events) {
  window_->setEvents(std::move(events));
}

void SnippetMenuWindow::open(MenuPlace place, const std::vector<MenuItem>& items) {
  window_->openAt(place, items);
}

void SnippetMenuWindow::setItems(const std::vector<MenuItem>& items) {
  window_->showItems(items);
}

void SnippetMenuWindow::highlightFirstResult() {
  window_->highlightFirstResult();
}

void SnippetMenuWindow::makeSearchFieldFirstResponder() {
  window_->focusField();
}

void SnippetMenuWindow::close() {
  window_->disappear();
}

std::uintptr_t SnippetMenuWindow::nativeWindow() const {
  return static_cast<std::uintptr_t>(window_->winId());
}

}  // namespace quorlo
