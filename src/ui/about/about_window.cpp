#include "ui/about/about_window.h"

#include "platform/workspace.h"
#include "ui/mnemonics.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QApplication>
#include <QClipboard>
#include <QColor>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSysInfo>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace quorlo {
namespace {

struct Library {
  const char* name;
  const char* address;
  const char* licence;
};

constexpr Library kLibraries[] = {
    {"Qt 6", "https://www.qt.io", "GNU LGPL 3"},
    {"ICU", "https://icu.unicode.org", "Unicode License"},
    {"SQLite", "https://sqlite.org", "Public Domain"},
    {"XCB", "https://xcb.freedesktop.org", "MIT"},
    {"xkbcommon", "https://xkbcommon.org", "MIT"},
    {"JSON for Modern C++", "https://json.nlohmann.me", "MIT"},
    {"{fmt}", "https://fmt.dev", "MIT"},
    {"libsndfile", "https://libsndfile.github.io/libsndfile", "GNU LGPL 2.1"},
    {"PulseAudio", "https://www.freedesktop.org/wiki/Software/PulseAudio", "GNU LGPL 2.1"},
    {"libuuid", "https://github.com/util-linux/util-linux", "BSD 3-Clause"},
};

// Not every dark theme has a colour for links that can be read, so they are underlined text.
QString linkTo(const QString& address, const QString& text, const QColor& colour) {
  return QStringLiteral("<a href=\"%1\" style=\"color:%2\">%3</a>").arg(address, colour.name(), text);
}

QString librariesPage(const QColor& text) {
  QString rows;
  for (const auto& [name, address, licence] : kLibraries) {
    rows += QStringLiteral("<tr><td>%1&nbsp;&nbsp;</td><td>%2</td></tr>")
                .arg(linkTo(QString::fromLatin1(address), QString::fromLatin1(name), text),
                     QString::fromLatin1(licence));
  }
  return QStringLiteral("<table cellspacing=\"3\">") + rows + QStringLiteral("</table>");
}

QLabel* paragraph(const QString& text) {
  auto* const label = new QLabel(text);
  label->setWordWrap(true);
  return label;
}

}  // namespace

AboutWindow::AboutWindow(Workspace& workspace, std::string_view version) {
  setWindowTitle(localizedText(u"About Quorlo"));
  setWindowIcon(programIcon());
  const int line = fontMetrics().lineSpacing();

  auto* const icon = new QLabel;
  icon->setPixmap(programIcon().pixmap(QSize(4 * line, 4 * line), devicePixelRatioF()));
  auto* const name = new QLabel(QStringLiteral("Quorlo"));
  auto font = QApplication::font();
  font.setPointSizeF(font.pointSizeF() * 1.8);
  font.setBold(true);
  name->setFont(font);
  const auto shownVersion =
      localizedText(u"Version %1").arg(QString::fromUtf8(version.data(), qsizetype(version.size())));
  auto* const versionLabel = new QLabel(shownVersion);
  versionLabel->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  auto* const names = new QVBoxLayout;
  names->addWidget(name);
  names->addWidget(versionLabel);
  names->addStretch();
  auto* const heading = new QHBoxLayout;
  heading->addWidget(icon);
  heading->addLayout(names, 1);

  auto* const licence =
      paragraph(QStringLiteral("© 2026 The Quorlo developers<br>") +
                localizedText(u"Quorlo is free software under the %1.")
                    .arg(linkTo(QStringLiteral("https://opensource.org/license/mit"),
                                localizedText(u"MIT License"), palette().color(QPalette::WindowText))));
  licence->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  auto* const librariesLabel = new QLabel(localizedText(u"Made with these libraries:"));
  auto* const libraries = new QTextBrowser;
  libraries->setOpenLinks(false);
  libraries->setHtml(librariesPage(palette().color(QPalette::Text)));
  libraries->setAccessibleName(librariesLabel->text());
  libraries->setMinimumSize(22 * line, 5 * line);
  connect(libraries, &QTextBrowser::anchorClicked, this,
          [&workspace](const QUrl& address) { workspace.openURL(address.toEncoded().toStdString()); });
  connect(licence, &QLabel::linkActivated, this,
          [&workspace](const QString& address) { workspace.openURL(address.toStdString()); });

  auto* const buttons = new QDialogButtonBox;
  auto* const copy = buttons->addButton(localizedText(u"Copy Version"), QDialogButtonBox::ActionRole);
  copy->setToolTip(localizedText(u"What to put into a report of a fault"));
  auto* const close = buttons->addButton(localizedText(u"Close"), QDialogButtonBox::RejectRole);
  close->setDefault(true);
  connect(copy, &QPushButton::clicked, this, [shownVersion] {
    QApplication::clipboard()->setText(
        QStringLiteral("Quorlo, %1, Qt %2, %3")
            .arg(shownVersion, QString::fromLatin1(qVersion()), QSysInfo::prettyProductName()));
  });
  connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);

  auto* const column = new QVBoxLayout(this);
  column->addLayout(heading);
  column->addWidget(
      paragraph(localizedText(u"Quorlo puts snippets in the place of abbreviations, wherever you type.")));
  column->addWidget(licence);
  column->addSpacing(line / 2);
  column->addWidget(librariesLabel);
  column->addWidget(libraries, 1);
  column->addWidget(buttons);
  for (const auto& sequence : {QKeySequence(Qt::Key_Escape), QKeySequence(QKeySequence::Close)}) {
    connect(new QShortcut(sequence, this), &QShortcut::activated, this, &QWidget::close);
  }
  assignMnemonics(*this);
  resize(QSize(24 * line, 32 * line).boundedTo(screen()->availableGeometry().size() * 0.9));
  close->setFocus();
}

void AboutWindow::present() {
  show();
  setWindowState(windowState() & ~Qt::WindowMinimized);
  raise();
  activateWindow();
}

}  // namespace quorlo
