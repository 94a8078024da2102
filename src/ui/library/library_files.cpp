#include "ui/library/library_files.h"

#include "store/records/ql_category.h"
#include "ui/library/dropped_files.h"
#include "ui/mnemonics.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QMainWindow>
#include <QMenu>
#include <QMimeData>
#include <QToolBar>
#include <QToolButton>

#include <utility>

namespace quorlo {
namespace {

QString filters() {
  const auto all = QStringLiteral(
      " (*.csv *.tsv *.txt *.quorlo *.json *.textexpander *.textexpanderbackup *.typeit4me *.textclipping)");
  return QStringList{localizedText(u"Files with snippets") + all,
                     localizedText(u"Tables") + QStringLiteral(" (*.csv *.tsv *.txt)"),
                     localizedText(u"Quorlo libraries") + QStringLiteral(" (*.quorlo *.json)"),
                     localizedText(u"All files") + QStringLiteral(" (*)")}
      .join(QStringLiteral(";;"));
}

}  // namespace

LibraryFiles::LibraryFiles(QMainWindow& window, LibraryFileServices services,
                           std::function<ExportOffer()> offer)
    : QObject(&window), window_(window), services_(std::move(services)), offer_(std::move(offer)) {
  window_.setAcceptDrops(true);
  window_.installEventFilter(this);
}

void LibraryFiles::addMenuTo(QToolBar& bar) {
  auto* const menu = new QMenu(&bar);
  QSet<QChar> mnemonics;
  const auto add = [&](QStringView icon, std::u16string_view name, const QKeySequence& keys, auto act) {
    auto* const action =
        menu->addAction(symbol(icon), withMnemonic(localizedText(name), mnemonics), this, act);
    action->setShortcut(keys);
    window_.addAction(action);
    return action;
  };
  add(u"square.and.arrow.down", u"Import…", QKeySequence::Open, [this] { chooseFiles(); });
  add(u"square.and.arrow.up", u"Export…", Qt::CTRL | Qt::SHIFT | Qt::Key_E,
      [this] { services_.exportSnippets(offer_()); });
  menu->addSeparator();
  auto* const undo = add(u"arrow.uturn.backward", u"Undo Import", {}, [this] { services_.undoImport(); });
  connect(menu, &QMenu::aboutToShow, undo, [this, undo] { undo->setEnabled(services_.canUndoImport()); });

  menu->addSeparator();
  add(u"clock", u"Backups…", {}, [this] { services_.showBackups(); });

  auto* const button = new QToolButton;
  button->setIcon(symbol(u"doc.text"));
  button->setText(localizedText(u"&File"));
  button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  button->setPopupMode(QToolButton::InstantPopup);
  button->setMenu(menu);
  bar.addWidget(button);
}

void LibraryFiles::importInto(const std::vector<std::filesystem::path>& files,
                              const std::shared_ptr<QLCategory>& folder) {
  services_.importFiles(files, {.destination = ImportIntoFolder{folder->uuid()}});
}

void LibraryFiles::chooseFiles() {
  auto* const dialog =
      new QFileDialog(&window_, localizedText(u"Import Snippets"), QDir::homePath(), filters());
  dialog->setFileMode(QFileDialog::ExistingFiles);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QFileDialog::filesSelected, this, [this](const QStringList& files) {
    std::vector<std::filesystem::path> paths;
    for (const auto& each : files) paths.emplace_back(each.toStdString());
    services_.importFiles(paths, {});
  });
  dialog->open();
}

// What no widget inside the window has taken.
bool LibraryFiles::eventFilter(QObject* watched, QEvent* event) {
  const bool isDrop = event->type() == QEvent::Drop;
  if (!isDrop && event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove) {
    return QObject::eventFilter(watched, event);
  }
  auto* const drop = static_cast<QDropEvent*>(event);
  const auto files = droppedFiles(*drop->mimeData());
  if (files.empty()) return false;
  drop->acceptProposedAction();
  if (isDrop) services_.importFiles(files, {});
  return true;
}

}  // namespace quorlo
