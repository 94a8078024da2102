#include "platform/workspace.h"
#include "store/context/managed_object_context.h"
#include "store/persistence_controller.h"
#include "store/records/folder_types.h"
#include "store/records/ql_app.h"
#include "ui/settings/application_chooser.h"
#include "ui/settings/insertion_ways.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/settings_pages.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace quorlo {
namespace {

constexpr int kIdentifierRole = Qt::UserRole;
constexpr auto kExcluded = static_cast<std::int64_t>(AppType::Excluded);

// The applications in which no abbreviation expands.
class ApplicationsPage : public SettingsPage {
 public:
  explicit ApplicationsPage(const SettingsServices& services)
      : SettingsPage(services.settings, u"Applications"),
        workspace_(services.workspace),
        persistence_(services.persistence),
        list_(new QListWidget),
        ways_(new InsertionWays(services.insertion, services.workspace)),
        remove_(new QPushButton(localizedText(u"Remove"))) {
    beginGroup(u"No abbreviation expands in these applications");
    list_->setAccessibleName(localizedText(u"Applications without abbreviations"));
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setMinimumHeight(6 * fontMetrics().lineSpacing());
    addWidget(list_);
    auto* const add = new QPushButton(localizedText(u"Add Application…"));
    auto* const buttons = new QWidget;
    auto* const row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(add);
    row->addWidget(remove_);
    row->addStretch();
    addWidget(buttons);
    addHint(u"For single folders of snippets, the snippet editor has rules of its own.");
    beginGroup(u"Applications that take text in a way of their own");
    addWidget(ways_);
    addHint(u"Quorlo knows terminals, Emacs, gVim and LibreOffice by itself.");

    connect(add, &QPushButton::clicked, this, [this] { choose(); });
    connect(remove_, &QPushButton::clicked, this, [this] { removeSelected(); });
    auto* const deletion = new QShortcut(QKeySequence::Delete, list_, nullptr, nullptr, Qt::WidgetShortcut);
    connect(deletion, &QShortcut::activated, this, [this] { removeSelected(); });
    connect(list_, &QListWidget::itemSelectionChanged, this,
            [this] { remove_->setEnabled(!list_->selectedItems().empty()); });
    changes_ = persistence_.managedObjectContext().observeObjectsDidChange([this](const ChangeSet&) {
      if (isVisible()) fill();
    });
  }

  void askForWay(const std::string& application) { ways_->ask(application); }

 protected:
  void showEvent(QShowEvent* event) override {
    installed_ = workspace_.installedApplications();
    fill();
    SettingsPage::showEvent(event);
  }

 private:
  std::vector<std::shared_ptr<QLApp>> excluded() const {
    const auto found =
        persistence_.managedObjectContext().fetch<QLApp>({.predicate = QLApp::kType.equals(kExcluded)});
    return found ? found.value() : std::vector<std::shared_ptr<QLApp>>{};
  }

  void fill() {
    std::vector<std::string> identifiers;
    for (const auto& each : excluded()) {
      if (!each->bundleID().empty()) identifiers.push_back(each->bundleID());
    }
    if (identifiers == shown_ && list_->count() > 0) return;
    shown_ = identifiers;
    list_->clear();
    for (const auto& identifier : identifiers) {
      const auto file = std::ranges::find(installed_, identifier, &InstalledApplication::bundleIdentifier);
      const bool isInstalled = file != installed_.end();
      const auto text = QString::fromStdString(isInstalled ? file->localizedName : identifier);
      auto* const item =
          new QListWidgetItem(applicationIcon(isInstalled ? file->iconName : std::string()), text, list_);
      item->setData(kIdentifierRole, QString::fromStdString(identifier));
      item->setToolTip(QString::fromStdString(identifier));
    }
    list_->sortItems();
    remove_->setEnabled(false);
  }

  void choose() {
    auto* const chooser = new ApplicationChooser(workspace_, this);
    chooser->setAttribute(Qt::WA_DeleteOnClose);
    connect(chooser, &QDialog::accepted, this, [this, chooser] { exclude(chooser->bundleIdentifier()); });
    chooser->open();
  }

  void exclude(const std::string& identifier) {
    if (identifier.empty() || persistence_.ruleApplication(identifier, kExcluded)) return;
    const auto record = persistence_.managedObjectContext().insert<QLApp>();
    record->setBundleID(identifier);
    record->setType(kExcluded);
    fill();
    persistence_.requestDeferredSave();
  }

  void removeSelected() {
    std::vector<std::string> selected;
    for (const auto* const item : list_->selectedItems()) {
      selected.push_back(item->data(kIdentifierRole).toString().toStdString());
    }
    for (const auto& each : excluded()) {
      if (std::ranges::find(selected, each->bundleID()) == selected.end()) continue;
      persistence_.managedObjectContext().deleteObject(*each);
    }
    fill();
    if (!selected.empty()) persistence_.requestDeferredSave();
  }

  Workspace& workspace_;
  PersistenceController& persistence_;
  QListWidget* list_;
  InsertionWays* ways_;
  QPushButton* remove_;
  std::vector<InstalledApplication> installed_;
  std::vector<std::string> shown_;
  Subscription changes_;
};

}  // namespace

ApplicationsPageParts makeApplicationsPage(const SettingsServices& services) {
  auto* const page = new ApplicationsPage(services);
  return {page, [page](const std::string& application) { page->askForWay(application); }};
}

}  // namespace quorlo
