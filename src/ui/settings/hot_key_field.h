#pragma once

#include "platform/shortcut.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class QLabel;
class QToolButton;

namespace quorlo {

class HotKeyCenter;
class KeyboardLayout;

// Shows a hot key and lets the user press another one. A combination that cannot be had is refused in words
// below the field.
class HotKeyField : public QWidget {
 public:
  // `name` is what screen readers call it. Both references must outlive the field.
  HotKeyField(HotKeyCenter& hotKeys, const KeyboardLayout& layout, const QString& name);
  ~HotKeyField() override;

  // What is shown; empty for no hot key.
  const std::optional<Shortcut>& shortcut() const { return shortcut_; }
  void setShortcut(std::optional<Shortcut> shortcut);

  // Called with what the user has chosen, once it is sure that it can be registered.
  void setHandler(std::function<void(std::optional<Shortcut>)> handler) { handler_ = std::move(handler); }

  // As if the user had pressed it.
  void choose(std::optional<Shortcut> shortcut);

 private:
  class Recorder;

  HotKeyCenter& hotKeys_;
  const KeyboardLayout& layout_;
  std::optional<Shortcut> shortcut_;
  std::function<void(std::optional<Shortcut>)> handler_;
  Recorder* recorder_;
  QToolButton* clear_;
  QLabel* notice_;
};

}  // namespace quorlo
