#include "ui/settings/settings_window.h"

#include "ui/mnemonics.h"
#include "ui/qt_text.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/settings_pages.h"
#include "ui/symbols.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QStackedWidget>

#include <algorithm>
#include <utility>

namespace quorlo {

SettingsWindow::SettingsWindow(const SettingsServices& services)
    : titles_(new QListWidget), pages_(new QStackedWidget) {
  setWindowTitle(localizedText(u"Quorlo Settings"));
  setWindowIcon(programIcon());
  titles_->setAccessibleName(localizedText(u"Pages of the settings"));
  titles_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  const int iconSize = fontMetrics().height() * 5 / 4;
  titles_->setIconSize({iconSize, iconSize});

  addPage(makeGeneralPage(services), u"gearshape");
  addPage(makeExpansionPage(services), u"keyboard");
  auto applications = makeApplicationsPage(services);
  askForWay_ = std::move(applications.askForWay);
  applicationsRow_ = titles_->count();
  addPage(applications.page, u"macwindow");
  addPage(makeSoundsPage(services), u"speaker.wave.2");
  addPage(makeMenuPage(services), u"magnifyingglass");
  addPage(makeHotKeysPage(services), u"command");
  addPage(makeFillInPage(services), u"character.cursor.ibeam");
  addPage(makeEditorPage(services), u"pencil");
  addPage(makeAdvancedPage(services), u"info.circle");
  connect(titles_, &QListWidget::currentRowChanged, pages_, &QStackedWidget::setCurrentIndex);
  titles_->setCurrentRow(0);
  titles_->setFixedWidth(titles_->sizeHintForColumn(0) + 2 * titles_->frameWidth());

  auto* const row = new QHBoxLayout(this);
  row->addWidget(titles_);
  row->addWidget(pages_, 1);

  for (const auto& sequence : {QKeySequence(Qt::Key_Escape), QKeySequence(QKeySequence::Close)}) {
    connect(new QShortcut(sequence, this), &QShortcut::activated, this, &QWidget::close);
  }
  for (const auto& [key, step] : {std::pair(Qt::Key_PageDown, 1), std::pair(Qt::Key_PageUp, -1)}) {
    connect(new QShortcut(QKeySequence(Qt::ControlModifier | key), this), &QShortcut::activated, this,
            [this, by = step] {
              titles_->setCurrentRow(std::clamp(titles_->currentRow() + by, 0, titles_->count() - 1));
            });
  }
  // As large as the largest page, where the screen has room.
  const QSize frame(titles_->width() + 3 * row->contentsMargins().left(), 2 * row->contentsMargins().top());
  resize((largestPage_ + frame).boundedTo(screen()->availableGeometry().size() * 0.9));
}

void SettingsWindow::askForWay(const std::string& application) {
  titles_->setCurrentRow(applicationsRow_);
  askForWay_(application);
}

void SettingsWindow::addPage(SettingsPage* page, QStringView symbolName) {
  assignMnemonics(*page);
  auto* const item = new QListWidgetItem(symbol(symbolName), page->title(), titles_);
  item->setSizeHint({titles_->iconSize().width() * 2 + fontMetrics().horizontalAdvance(page->title()),
                     titles_->iconSize().height() * 7 / 4});
  auto* const area = new QScrollArea;
  area->setFrameShape(QFrame::NoFrame);
  area->setWidgetResizable(true);
  area->setWidget(page);
  area->setFocusPolicy(Qt::NoFocus);
  const int scrollBar = area->verticalScrollBar()->sizeHint().width();
  area->setMinimumWidth(page->minimumSizeHint().width() + scrollBar);
  largestPage_ = largestPage_.expandedTo(page->sizeHint() + QSize(scrollBar, 0));
  pages_->addWidget(area);
}

}  // namespace quorlo
