#include "ui/import/destination_chooser.h"

#include "store/context/fetch_request.h"
#include "store/context/managed_object_context.h"
#include "store/library_editing.h"
#include "store/records/ql_category.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>

#include <algorithm>
#include <utility>
#include <variant>

namespace quorlo {
namespace {

constexpr int kNoFolder = 0;

}  // namespace

DestinationChooser::DestinationChooser(const ManagedObjectContext& library,
                                       std::function<void(ImportDestination)> chosen)
    : folders_(new QComboBox), newTitle_(new QLineEdit), chosen_(std::move(chosen)) {
  folders_->addItem(symbol(u"tray.full"), localizedText(u"No Folder"));
  const auto found = library.fetch<QLCategory>({.sortDescriptors = QLCategory::sortDescriptors()});
  if (found) {
    for (const auto& each : found.value()) {
      if (!takesSnippets(*each)) continue;
      folders_->addItem(symbol(u"folder"), toQString(each->title()), QString::fromStdString(each->uuid()));
    }
  }
  folders_->addItem(symbol(u"folder.badge.plus"), localizedText(u"New Folder…"));
  newTitle_->setPlaceholderText(localizedText(u"Name of the new folder"));
  newTitle_->setAccessibleName(newTitle_->placeholderText());
  newTitle_->hide();

  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(folders_);
  row->addWidget(newTitle_, 1);
  setFocusProxy(folders_);
  connect(folders_, &QComboBox::activated, this, [this] {
    newTitle_->setVisible(isNew());
    if (isNew()) newTitle_->setFocus();
    chosen_(destination());
  });
  connect(newTitle_, &QLineEdit::textEdited, this, [this] { chosen_(destination()); });
}

bool DestinationChooser::isNew() const {
  return folders_->currentIndex() == folders_->count() - 1;
}

void DestinationChooser::setDestination(const ImportDestination& destination) {
  int index = kNoFolder;
  if (const auto* const folder = std::get_if<ImportIntoFolder>(&destination)) {
    index = std::max(kNoFolder, folders_->findData(QString::fromStdString(folder->uuid)));
  } else if (const auto* const titled = std::get_if<ImportIntoTitled>(&destination)) {
    index = folders_->count() - 1;
    newTitle_->setText(toQString(titled->title));
  }
  folders_->setCurrentIndex(index);
  newTitle_->setVisible(isNew());
}

ImportDestination DestinationChooser::destination() const {
  if (isNew()) return ImportIntoTitled{newTitle_->text().trimmed().toStdU16String()};
  if (folders_->currentIndex() == kNoFolder) return ImportAsFiled{};
  return ImportIntoFolder{folders_->currentData().toString().toStdString()};
}

bool DestinationChooser::isComplete() const {
  return !isNew() || !newTitle_->text().trimmed().isEmpty();
}

}  // namespace quorlo
