#include "store/context/managed_object_context.h"
#include "store/persistence_controller.h"
#include "store/records/folder_types.h"
#include "store/records/ql_category.h"
#include "ui/settings/hot_key_field.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/settings_pages.h"

#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

class HotKeysPage : public SettingsPage {
 public:
  explicit HotKeysPage(const SettingsServices& services)
      : SettingsPage(services.settings, u"Hot Keys"), services_(services) {
    beginGroup(u"Menu");
    menu_ =
        new HotKeyField(services.hotKeys, services.keyboardLayout, localizedText(u"Hot key of the menu:"));
    menu_->setHandler([this](std::optional<Shortcut> shortcut) { services_.setMenuShortcut(shortcut); });
    addField(u"Hot key of the menu:", menu_);
    addHint(u"It opens the menu at the pointer, whatever application is in front.");

    beginGroup(u"Folders");
    addWidget(folders_);
    foldersHint_ = addHint(u"The hot key of a folder opens the menu with the snippets of that folder alone.");
    folderChanges_ =
        services_.persistence.managedObjectContext().observeObjectsDidChange([this](const ChangeSet&) {
          if (isVisible()) showFolders();
        });
    follow([this] { menu_->setShortcut(services_.menuShortcut()); });
  }

 protected:
  void showEvent(QShowEvent* event) override {
    showFolders();
    refresh();
    SettingsPage::showEvent(event);
  }

 private:
  using Folders = std::vector<std::shared_ptr<QLCategory>>;

  Folders userFolders() const {
    auto folders = services_.persistence.allFolders();
    std::erase_if(folders, [](const auto& each) {
      return each->type() != static_cast<std::int64_t>(CategoryType::Folder);
    });
    return folders;
  }

  void showFolders() {
    const auto folders = userFolders();
    if (!showsSame(folders)) build(folders);
    foldersHint_->setText(
        folders.empty() ? localizedText(u"There is no folder yet. Folders are made in the snippet editor.")
                        : localizedText(u"The hot key of a folder opens the menu with the snippets of that "
                                        u"folder alone."));
    for (std::size_t i = 0; i < folders.size(); ++i) fields_[i]->setShortcut(folders[i]->shortcutValue());
  }

  bool showsSame(const Folders& folders) const {
    return std::ranges::equal(folders, shown_, [](const auto& folder, const auto& shown) {
      return folder == shown.first && folder->title() == shown.second;
    });
  }

  void build(const Folders& folders) {
    shown_.clear();
    fields_.clear();
    delete std::exchange(rows_, new QWidget);
    auto* const form = new QFormLayout(rows_);
    form->setContentsMargins(0, 0, 0, 0);
    for (const auto& folder : folders) {
      shown_.emplace_back(folder, folder->title());
      const auto title = toQString(folder->title());
      auto* const field = new HotKeyField(services_.hotKeys, services_.keyboardLayout, title);
      field->setHandler([this, folder](std::optional<Shortcut> shortcut) {
        folder->setShortcutValue(shortcut);
        services_.persistence.requestDeferredSave();
      });
      auto* const label = new QLabel(title);
      label->setTextFormat(Qt::PlainText);
      form->addRow(label, field);
      fields_.push_back(field);
    }
    folders_->layout()->addWidget(rows_);
  }

  static QWidget* makeFrame() {
    auto* const frame = new QWidget;
    auto* const column = new QVBoxLayout(frame);
    column->setContentsMargins(0, 0, 0, 0);
    return frame;
  }

  SettingsServices services_;
  HotKeyField* menu_;
  QWidget* folders_ = makeFrame();
  QWidget* rows_ = nullptr;
  QLabel* foldersHint_;
  std::vector<std::pair<std::shared_ptr<QLCategory>, std::u16string>> shown_;
  std::vector<HotKeyField*> fields_;
  Subscription folderChanges_;
};

}  // namespace

SettingsPage* makeHotKeysPage(const SettingsServices& services) {
  return new HotKeysPage(services);
}

}  // namespace quorlo
