#include "ui/settings/application_chooser.h"

#include "platform/workspace.h"
#include "ui/mnemonics.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace quorlo {
namespace {

constexpr int kIdentifierRole = Qt::UserRole;

using Choice = ApplicationChooser::Choice;

bool contains(const std::vector<Choice>& choices, const std::string& identifier) {
  return std::ranges::find(choices, identifier, &Choice::identifier) != choices.end();
}

}  // namespace

QIcon applicationIcon(const std::string& iconName) {
  const auto name = QString::fromStdString(iconName);
  const QIcon icon = QDir::isAbsolutePath(name) ? QIcon(name) : QIcon::fromTheme(name);
  return icon.isNull() ? symbol(u"app") : icon;
}

ApplicationChooser::ApplicationChooser(const Workspace& workspace, QWidget* parent)
    : QDialog(parent), search_(new QLineEdit), list_(new QListWidget) {
  setWindowTitle(localizedText(u"Choose an Application"));
  auto* const label = new QLabel(localizedText(u"Name or identifier:"));
  label->setBuddy(search_);
  search_->setAccessibleName(label->text());
  search_->setClearButtonEnabled(true);
  search_->installEventFilter(this);
  list_->setAccessibleName(localizedText(u"Applications"));
  auto* const buttons = new QDialogButtonBox;
  choose_ = buttons->addButton(localizedText(u"Choose"), QDialogButtonBox::AcceptRole);
  buttons->addButton(localizedText(u"Cancel"), QDialogButtonBox::RejectRole);
  choose_->setDefault(true);

  auto* const column = new QVBoxLayout(this);
  column->addWidget(label);
  column->addWidget(search_);
  column->addWidget(list_, 1);
  column->addWidget(buttons);

  connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) { filter(text); });
  connect(list_, &QListWidget::itemDoubleClicked, this, [this] { accept(); });
  connect(list_, &QListWidget::currentItemChanged, this,
          [this](const QListWidgetItem* item) { choose_->setEnabled(item != nullptr); });
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  addApplications(workspace);
  filter({});
  assignMnemonics(*this);
  const int line = fontMetrics().lineSpacing();
  resize(24 * line, 26 * line);
}

std::string ApplicationChooser::bundleIdentifier() const {
  const auto* const item = list_->currentItem();
  return item ? item->data(kIdentifierRole).toString().toStdString() : std::string();
}

// The applications that run come first: the user has just come from one of them.
void ApplicationChooser::addApplications(const Workspace& workspace) {
  const auto installed = workspace.installedApplications();
  std::vector<Choice> running;
  for (const auto& each : workspace.runningApplications()) {
    if (!each->bundleIdentifier || *each->bundleIdentifier == workspace.ownBundleIdentifier()) continue;
    if (contains(running, *each->bundleIdentifier)) continue;
    const auto file =
        std::ranges::find(installed, *each->bundleIdentifier, &InstalledApplication::bundleIdentifier);
    running.push_back({*each->bundleIdentifier, QString::fromStdString(each->localizedName),
                       file == installed.end() ? std::string() : file->iconName});
  }
  std::vector<Choice> others;
  for (const auto& each : installed) {
    if (each.bundleIdentifier == workspace.ownBundleIdentifier()) continue;
    if (contains(running, each.bundleIdentifier)) continue;
    others.push_back({each.bundleIdentifier, QString::fromStdString(each.localizedName), each.iconName});
  }
  for (auto* const choices : {&running, &others}) {
    std::ranges::sort(*choices,
                      [](const Choice& a, const Choice& b) { return a.name.localeAwareCompare(b.name) < 0; });
    for (const auto& each : *choices) addItem(each, choices == &running);
  }
  byIdentifier_ = new QListWidgetItem(symbol(u"pencil"), QString(), list_);
}

void ApplicationChooser::addItem(const Choice& choice, bool isRunning) {
  const auto identifier = QString::fromStdString(choice.identifier);
  const QString name = choice.name.isEmpty() ? identifier : choice.name;
  auto* const item = new QListWidgetItem(applicationIcon(choice.iconName),
                                         isRunning ? localizedText(u"%1 (running)").arg(name) : name, list_);
  item->setData(kIdentifierRole, identifier);
  item->setToolTip(identifier);
}

void ApplicationChooser::filter(const QString& text) {
  const auto sought = text.trimmed();
  QListWidgetItem* first = nullptr;
  for (int i = 0; i < list_->count() - 1; ++i) {
    auto* const item = list_->item(i);
    const auto identifier = item->data(kIdentifierRole).toString();
    item->setHidden(!item->text().contains(sought, Qt::CaseInsensitive) &&
                    !identifier.contains(sought, Qt::CaseInsensitive));
    if (!first && !item->isHidden()) first = item;
  }
  byIdentifier_->setData(kIdentifierRole, sought);
  byIdentifier_->setText(localizedText(u"Other application: %1").arg(sought));
  byIdentifier_->setHidden(sought.isEmpty());
  list_->setCurrentItem(first ? first : sought.isEmpty() ? nullptr : byIdentifier_);
}

// The arrows move the choice while the user types.
bool ApplicationChooser::eventFilter(QObject* watched, QEvent* event) {
  if (watched != search_ || event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      QCoreApplication::sendEvent(list_, event);
      return true;
    default:
      return false;
  }
}

}  // namespace quorlo
