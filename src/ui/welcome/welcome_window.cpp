#include "ui/welcome/welcome_window.h"

#include "app/settings/launch_at_login.h"
#include "app/settings/settings_controller.h"
#include "base/log.h"
#include "platform/keyboard_layout.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"
#include "ui/mnemonics.h"
#include "ui/qt_text.h"
#include "ui/settings/hot_key_field.h"
#include "ui/symbols.h"

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

// Free on the desktops that are in use, and easy to reach.
constexpr Shortcut kProposedShortcut{key::kSpace, modifier::kCommand | modifier::kOption};

constexpr std::size_t kLongestExample = 80;

QLabel* makeParagraph(const QString& text) {
  auto* const label = new QLabel(text);
  label->setWordWrap(true);
  return label;
}

// Painted anew for each palette and screen.
class PictureLabel : public QWidget {
 public:
  PictureLabel(QIcon icon, int size) : icon_(std::move(icon)) { setFixedSize(size, size); }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    icon_.paint(&painter, rect());
  }

 private:
  QIcon icon_;
};

// A snippet that shows the matter plainly; null when the library has none.
std::shared_ptr<QLSnippet> exampleSnippet(const ManagedObjectContext& library) {
  const auto found = library.fetch<QLSnippet>({.predicate = QLSnippet::kAbbreviation.isNotNil()});
  if (!found) return nullptr;
  const auto isPlain = [](const auto& each) {
    return each->isLive() && each->type() == SnippetType::plainText && each->macroStrings().empty() &&
           each->plainText().size() <= kLongestExample;
  };
  const auto& snippets = found.value();
  const auto example = std::ranges::find_if(snippets, isPlain);
  return example == snippets.end() ? nullptr : *example;
}

// What completes an abbreviation, as the user reads it; none where its last symbol does.
QString delimiterToPress(const SettingsController& settings) {
  if (settings.abbreviationsTriggerType() != AbbreviationTriggerType::delimiterKey) return {};
  const auto keys = settings.abbreviationDelimiterKey();
  for (const auto member : DelimiterKeys::members()) {
    // Tab leads out of the field.
    if (keys.contains(member) && member != kTabDelimiter) return toQString(member.displayString());
  }
  return {};
}

}  // namespace

WelcomeWindow::WelcomeWindow(const WelcomeServices& services)
    : services_(services),
      steps_(new QStackedWidget),
      progress_(new QLabel),
      back_(new QPushButton(localizedText(u"Back"))),
      next_(new QPushButton) {
  setWindowTitle(localizedText(u"Welcome to Quorlo"));
  setWindowIcon(programIcon());
  addAbbreviationsStep();
  addTryOutStep();
  addMenuStep();

  auto* const bottom = new QHBoxLayout;
  bottom->addWidget(progress_, 1);
  bottom->addWidget(back_);
  bottom->addWidget(next_);
  auto* const column = new QVBoxLayout(this);
  column->addWidget(steps_, 1);
  column->addLayout(bottom);
  const int line = fontMetrics().lineSpacing();
  column->setContentsMargins(line, line, line, line);
  next_->setDefault(true);
  next_->setAutoDefault(true);
  connect(back_, &QPushButton::clicked, this, [this] { go(steps_->currentIndex() - 1); });
  connect(next_, &QPushButton::clicked, this, [this] { go(steps_->currentIndex() + 1); });
  for (const auto& sequence : {QKeySequence(Qt::Key_Escape), QKeySequence(QKeySequence::Close)}) {
    connect(new QShortcut(sequence, this), &QShortcut::activated, this, &QWidget::close);
  }
  settingsChanges_ = services_.settings.observe([this](Setting) { refresh(); });
  resize(QSize(36 * line, 24 * line).boundedTo(screen()->availableGeometry().size() * 0.9));
}

void WelcomeWindow::showEvent(QShowEvent* event) {
  if (std::exchange(isToBegin_, false)) go(0);
  QWidget::showEvent(event);
}

// What the focused control leaves alone.
void WelcomeWindow::keyPressEvent(QKeyEvent* event) {
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (isReturn) return next_->click();
  QWidget::keyPressEvent(event);
}

void WelcomeWindow::closeEvent(QCloseEvent* event) {
  isToBegin_ = true;
  services_.settings.setWelcomeViewHasBeenShown(true);
  if (services_.closed) services_.closed();
  QWidget::closeEvent(event);
}

QVBoxLayout* WelcomeWindow::addStep(const QIcon& icon, std::u16string_view title, std::u16string_view text) {
  auto* const step = new QWidget;
  auto* const column = new QVBoxLayout(step);
  column->setContentsMargins(0, 0, 0, 0);
  const int line = fontMetrics().lineSpacing();
  auto* const picture = new PictureLabel(icon, 4 * line);
  auto* const heading = makeParagraph(localizedText(title));
  auto font = QApplication::font();
  font.setPointSizeF(font.pointSizeF() * 1.6);
  font.setBold(true);
  heading->setFont(font);
  auto* const words = new QVBoxLayout;
  words->addWidget(heading);
  words->addWidget(makeParagraph(localizedText(text)));
  words->addStretch();
  auto* const top = new QHBoxLayout;
  top->setSpacing(line);
  top->addWidget(picture, 0, Qt::AlignTop);
  top->addLayout(words, 1);
  column->addLayout(top);
  column->addSpacing(line / 2);
  steps_->addWidget(step);
  return column;
}

void WelcomeWindow::addAbbreviationsStep() {
  auto* const column = addStep(programIcon(), u"Welcome to Quorlo",
                               u"Give a text an abbreviation. Whenever you type the abbreviation, in any "
                               u"application, the text takes its place.");
  abbreviations_ = new QCheckBox(localizedText(u"Expand abbreviations as I type"));
  column->addWidget(abbreviations_);
  column->addWidget(makeParagraph(localizedText(
      u"For this, Quorlo watches the keys that you press. What you type stays on this computer and is not kept.")));
  column->addSpacing(fontMetrics().lineSpacing() / 2);
  starter_ = new QCheckBox(localizedText(u"Add a few snippets to begin with"));
  starter_->setChecked(true);
  column->addWidget(starter_);
  column->addStretch();
  connect(abbreviations_, &QCheckBox::clicked, this, [this](bool on) {
    services_.settings.setAbbreviationsEnabled(on);
    refresh();  // without permission it stays off
  });
}

void WelcomeWindow::addTryOutStep() {
  auto* const column = addStep(symbol(u"keyboard"), u"Try it", u"Type an abbreviation into this field.");
  suggestion_ = makeParagraph({});
  tryOut_ = new TryOutEdit(services_.settings, services_.interpreter, services_.findSnippet);
  tryOut_->setAccessibleName(localizedText(u"Field to try abbreviations in"));
  praise_ = makeParagraph({});
  column->addWidget(suggestion_);
  tryOut_->setMaximumHeight(6 * fontMetrics().lineSpacing());
  column->addWidget(tryOut_);
  column->addWidget(praise_);
  column->addStretch();
  column->addWidget(makeParagraph(localizedText(
      u"This field only shows how it works: Quorlo leaves its own windows alone. In other applications it types "
      u"by itself.")));
  tryOut_->setExpanded(
      [this] { praise_->setText(localizedText(u"Well done! That is all there is to it.")); });
}

void WelcomeWindow::addMenuStep() {
  auto* const column =
      addStep(symbol(u"magnifyingglass"), u"Find any snippet",
              u"You need not know all abbreviations. Press the hot key in any application, type a "
              u"word of the snippet, and press Return.");
  const auto name = localizedText(u"Hot key of the menu:");
  auto* const label = new QLabel(name);
  hotKey_ = new HotKeyField(services_.hotKeys, services_.keyboardLayout, name);
  hotKey_->setHandler([this](std::optional<Shortcut> shortcut) {
    services_.setMenuShortcut(shortcut);
    refresh();
  });
  label->setBuddy(hotKey_);
  proposal_ = new QPushButton;
  connect(proposal_, &QPushButton::clicked, this, [this] { hotKey_->choose(kProposedShortcut); });
  launchAtLogin_ = new QCheckBox(localizedText(u"Launch at login"));
  connect(launchAtLogin_, &QCheckBox::clicked, this, [this](bool on) {
    if (const auto done = services_.launchAtLogin.setEnabled(on); !done)
      logWarning("WARNING: " + done.error().message);
    refresh();
  });
  column->addWidget(label);
  column->addWidget(hotKey_);
  column->addWidget(proposal_, 0, Qt::AlignLeading);
  column->addSpacing(fontMetrics().lineSpacing());
  column->addWidget(makeParagraph(localizedText(
      u"The menu is also behind Quorlo's icon in the system tray, with the snippet editor and the settings.")));
  column->addWidget(launchAtLogin_);
  column->addStretch();
}

void WelcomeWindow::go(int step) {
  if (step > 0) answerStarterOffer();
  if (step == steps_->count()) {
    close();
    return;
  }
  const bool isLast = step == steps_->count() - 1;
  steps_->setCurrentIndex(step);
  progress_->setText(localizedText(u"Step %1 of %2").arg(step + 1).arg(steps_->count()));
  back_->setVisible(step > 0);
  next_->setText(isLast ? localizedText(u"Start Using Quorlo") : localizedText(u"Continue"));
  suggestAbbreviation();
  praise_->clear();
  tryOut_->clear();
  refresh();
  for (auto* const button : {back_, next_}) button->setText(button->text().remove(QLatin1Char('&')));
  assignMnemonics(*this);
  step == 1 ? tryOut_->setFocus() : next_->setFocus();
}

void WelcomeWindow::answerStarterOffer() {
  if (!services_.starterIsDue()) return;
  if (const auto answered = services_.answerStarterOffer(starter_->isChecked()); !answered) {
    logWarning("WARNING: The starter snippets could not be added. " + answered.error().message);
  }
}

void WelcomeWindow::suggestAbbreviation() {
  const auto example = exampleSnippet(services_.library);
  if (!example) {
    suggestion_->setText(localizedText(u"There is no abbreviation yet. Make one in the snippet editor."));
    return;
  }
  const auto abbreviation =
      QStringLiteral("<b>%1</b>").arg(toQString(example->abbreviation()).toHtmlEscaped());
  const auto delimiter = delimiterToPress(services_.settings);
  suggestion_->setText(
      delimiter.isEmpty()
          ? localizedText(u"For example: %1").arg(abbreviation)
          : localizedText(u"For example: %1, then the key %2").arg(abbreviation, delimiter.toHtmlEscaped()));
}

void WelcomeWindow::refresh() {
  abbreviations_->setChecked(services_.settings.abbreviationsEnabled());
  starter_->setVisible(services_.starterIsDue());
  launchAtLogin_->setChecked(services_.launchAtLogin.isEnabled());
  const auto shortcut = services_.menuShortcut();
  hotKey_->setShortcut(shortcut);
  proposal_->setText(
      localizedText(u"Use %1").arg(toQString(shortcutText(kProposedShortcut, services_.keyboardLayout))));
  proposal_->setVisible(!shortcut);
}

}  // namespace quorlo
