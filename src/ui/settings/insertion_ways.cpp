#include "ui/settings/insertion_ways.h"

#include "app/settings/insertion_settings.h"
#include "base/ascii.h"
#include "platform/workspace.h"
#include "ui/qt_text.h"
#include "ui/settings/application_chooser.h"
#include "ui/settings/insertion_entry_dialog.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace quorlo {
namespace {

constexpr int kIdentifierRole = Qt::UserRole;

QString textOf(InsertionProfile profile) {
  const auto pause = profile.pauseAfterCaretMoves;
  profile.pauseAfterCaretMoves = Seconds(0);
  QString text;
  if (profile.method == InsertionMethod::none) {
    text = localizedText(u"Expand no abbreviation");
  } else if (profile.method == InsertionMethod::type) {
    text = localizedText(u"Type the text");
  } else if (profile.pastesSelection) {
    text = localizedText(u"Paste as in a terminal");
  } else if (profile.pasteChords.empty()) {
    text = localizedText(u"Paste as usual");
  } else {
    text = localizedText(u"Paste with %1")
               .arg(QString::fromStdString(toText(profile)).section(QLatin1Char(' '), 1));
  }
  if (pause > Seconds(0)) text += localizedText(u", pause %1 s").arg(pause.count());
  return text;
}

}  // namespace

InsertionWays::InsertionWays(InsertionSettings& settings, Workspace& workspace)
    : settings_(settings),
      workspace_(workspace),
      table_(new QTreeWidget),
      change_(new QPushButton(localizedText(u"Change…"))),
      remove_(new QPushButton(localizedText(u"Remove"))),
      problem_(new QLabel) {
  table_->setAccessibleName(localizedText(u"Applications with a way of their own"));
  table_->setHeaderLabels({localizedText(u"Application"), localizedText(u"Way")});
  table_->setRootIsDecorated(false);
  table_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
  table_->setMinimumHeight(6 * fontMetrics().lineSpacing());
  table_->setMinimumWidth(26 * fontMetrics().lineSpacing());
  problem_->setWordWrap(true);
  auto* const add = new QPushButton(localizedText(u"Add Way…"));
  auto* const row = new QHBoxLayout;
  for (auto* const button : {add, change_, remove_}) row->addWidget(button);
  row->addStretch();
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(table_);
  column->addWidget(problem_);
  column->addLayout(row);

  connect(add, &QPushButton::clicked, this, [this] { ask({}); });
  connect(change_, &QPushButton::clicked, this, [this] { ask(selected()); });
  connect(remove_, &QPushButton::clicked, this, [this] { removeSelected(); });
  connect(table_, &QTreeWidget::itemActivated, this, [this] { ask(selected()); });
  auto* const deletion = new QShortcut(QKeySequence::Delete, table_, nullptr, nullptr, Qt::WidgetShortcut);
  connect(deletion, &QShortcut::activated, this, [this] { removeSelected(); });
  connect(table_, &QTreeWidget::itemSelectionChanged, this, [this] {
    change_->setEnabled(!selected().empty());
    remove_->setEnabled(!selected().empty());
  });
}

void InsertionWays::ask(const std::string& application) {
  InsertionEntry entry{application, {}};
  const auto& entries = settings_.entries();
  const auto known = std::ranges::find_if(
      entries, [&](const auto& each) { return equalIgnoringCase(each.application, application); });
  if (known != entries.end()) entry = *known;
  auto* const dialog = new InsertionEntryDialog(entry, workspace_, this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QDialog::accepted, this, [this, dialog, former = entry.application] {
    const auto entered = dialog->entry();
    auto status = settings_.set(entered);
    if (status && !former.empty() && !equalIgnoringCase(former, entered.application)) {
      status = settings_.remove(former);
    }
    report(status);
  });
  dialog->open();
}

void InsertionWays::showEvent(QShowEvent* event) {
  fill();
  QWidget::showEvent(event);
}

void InsertionWays::fill() {
  table_->clear();
  const auto installed = workspace_.installedApplications();
  for (const auto& entry : settings_.entries()) {
    const auto file =
        std::ranges::find(installed, entry.application, &InstalledApplication::bundleIdentifier);
    const bool isInstalled = file != installed.end();
    const auto name = QString::fromStdString(isInstalled ? file->localizedName : entry.application);
    auto* const item = new QTreeWidgetItem(table_, {name, textOf(entry.profile)});
    item->setIcon(0, applicationIcon(isInstalled ? file->iconName : std::string()));
    item->setToolTip(0, QString::fromStdString(entry.application));
    item->setData(0, kIdentifierRole, QString::fromStdString(entry.application));
  }
  QStringList problems;
  for (const auto& each : settings_.problems()) problems << QString::fromStdString(each.message);
  problem_->setText(problems.join(QLatin1Char('\n')));
  problem_->setVisible(!problems.isEmpty());
  change_->setEnabled(false);
  remove_->setEnabled(false);
}

void InsertionWays::removeSelected() {
  if (const auto application = selected(); !application.empty()) report(settings_.remove(application));
}

void InsertionWays::report(const Status& status) {
  fill();
  if (status) return;
  problem_->setText(QString::fromStdString(status.error().message));
  problem_->show();
}

std::string InsertionWays::selected() const {
  const auto items = table_->selectedItems();
  return items.empty() ? std::string() : items.front()->data(0, kIdentifierRole).toString().toStdString();
}

}  // namespace quorlo
