#include "ui/settings/hot_key_field.h"

#include "base/subscription.h"
#include "platform/hot_key_center.h"
#include "platform/keyboard_layout.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

#include <utility>

namespace quorlo {

// The button that is pressed to record, and then hears the keys.
class HotKeyField::Recorder : public QPushButton {
 public:
  explicit Recorder(HotKeyField& field) : field_(field) {
    connect(this, &QPushButton::clicked, this, [this] { record(); });
  }

  void showShortcut() {
    suspension_.reset();
    const auto& shortcut = field_.shortcut_;
    setText(shortcut ? toQString(shortcutText(*shortcut, field_.layout_)) : localizedText(u"Record Hot Key"));
  }
  bool isRecording() const { return static_cast<bool>(suspension_); }

  QSize sizeHint() const override {
    return QPushButton::sizeHint().expandedTo({fontMetrics().horizontalAdvance(QLatin1Char('m')) * 16, 0});
  }

 protected:
  bool event(QEvent* event) override {
    // Before mnemonics, Tab and the window's own shortcuts.
    if (isRecording() && event->type() == QEvent::ShortcutOverride) {
      event->accept();
      return true;
    }
    if (isRecording() && event->type() == QEvent::KeyPress) {
      take(*static_cast<QKeyEvent*>(event));
      return true;
    }
    return QPushButton::event(event);
  }
  void hideEvent(QHideEvent* event) override {
    if (isRecording()) showShortcut();
    QPushButton::hideEvent(event);
  }
  void focusOutEvent(QFocusEvent* event) override {
    if (isRecording()) showShortcut();
    QPushButton::focusOutEvent(event);
  }

 private:
  void record() {
    suspension_ = field_.hotKeys_.suspend();
    field_.notice_->hide();
    setText(localizedText(u"Press the keys…"));
  }

  void take(const QKeyEvent& press) {
    const bool isPlain = press.modifiers() == Qt::NoModifier;
    if (isPlain && press.key() == Qt::Key_Escape) return showShortcut();
    if (isPlain && (press.key() == Qt::Key_Backspace || press.key() == Qt::Key_Delete))
      return field_.choose({});
    const auto shortcut = field_.layout_.shortcutOf(
        {press.nativeScanCode(), press.nativeVirtualKey(), press.nativeModifiers()});
    if (shortcut) field_.choose(normalized(*shortcut));
  }

  HotKeyField& field_;
  Subscription suspension_;  // while recording
};

HotKeyField::HotKeyField(HotKeyCenter& hotKeys, const KeyboardLayout& layout, const QString& name)
    : hotKeys_(hotKeys),
      layout_(layout),
      recorder_(new Recorder(*this)),
      clear_(new QToolButton),
      notice_(new QLabel) {
  recorder_->setAccessibleName(name);
  recorder_->setToolTip(localizedText(u"Click here, then press the keys. Escape leaves it as it was."));
  recorder_->setAutoDefault(false);
  setFocusProxy(recorder_);
  clear_->setIcon(symbol(u"xmark.circle"));
  clear_->setAutoRaise(true);
  clear_->setToolTip(localizedText(u"Remove the hot key"));
  clear_->setAccessibleName(clear_->toolTip());
  clear_->setFocusPolicy(Qt::TabFocus);
  notice_->setWordWrap(true);
  notice_->hide();
  connect(clear_, &QToolButton::clicked, this, [this] { choose({}); });

  auto* const row = new QHBoxLayout;
  row->addWidget(recorder_);
  row->addWidget(clear_);
  row->addStretch();
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addLayout(row);
  column->addWidget(notice_);
  setShortcut({});
}

HotKeyField::~HotKeyField() {
  delete recorder_;  // its loss of focus must still find the field
}

void HotKeyField::setShortcut(std::optional<Shortcut> shortcut) {
  shortcut_ = shortcut;
  clear_->setEnabled(shortcut_.has_value());
  if (!recorder_->isRecording()) recorder_->showShortcut();
}

void HotKeyField::choose(std::optional<Shortcut> shortcut) {
  recorder_->showShortcut();  // ends the suspension, without which nothing can be registered
  QString problem;
  if (shortcut == shortcut_) {
    // Registered already, by this very setting.
  } else if (shortcut && !isUsable(*shortcut)) {
    problem = localizedText(u"That key is needed for typing. Hold Ctrl, Alt or the Super key with it.");
  } else if (shortcut) {
    const auto trial = hotKeys_.registerHotKey(*shortcut, [] {});
    if (!trial) problem = QString::fromStdString(trial.error().message);
  }
  notice_->setText(problem);
  notice_->setVisible(!problem.isEmpty());
  if (!problem.isEmpty() || shortcut == shortcut_) return;
  setShortcut(shortcut);
  if (handler_) handler_(shortcut);
}

}  // namespace quorlo
