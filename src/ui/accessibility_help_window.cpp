#include "ui/accessibility_help_window.h"

#include "base/localized.h"
#include "engine/accessibility_help.h"
#include "platform/accessibility_trust.h"
#include "platform/target_focus.h"
#include "ui/mnemonics.h"
#include "ui/symbols.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <string_view>

namespace quorlo {
namespace {

constexpr qint64 kSameWishMilliseconds = 2000;
constexpr int kWidthInLines = 30;

QString localizedText(std::u16string_view base) {
  return QString::fromStdU16String(localized(base));
}

QString paragraph(const QString& html) {
  return QStringLiteral("<p>") + html + QStringLiteral("</p>");
}

QString htmlOf(const std::vector<AccessibilityObstacle>& obstacles) {
  if (obstacles.empty()) {
    return paragraph(
        localizedText(u"Nothing is missing: Quorlo can watch and press keys. Abbreviations and "
                      u"Auto-Paste can be switched on."));
  }
  auto html =
      paragraph(localizedText(u"Quorlo cannot watch and press keys here, so abbreviations and "
                              u"Auto-Paste are off. Snippets that you choose from the menu are copied "
                              u"to the clipboard."));
  for (const auto obstacle : obstacles) {
    const auto help = accessibilityHelp(obstacle);
    html += paragraph(QStringLiteral("<b>%1</b><br>%2")
                          .arg(QString::fromStdU16String(help.what).toHtmlEscaped(),
                               QString::fromStdU16String(help.remedy).toHtmlEscaped()));
  }
  return html + paragraph(localizedText(u"Once that is done, switch abbreviations on again."));
}

}  // namespace

class AccessibilityHelpWindow::Window : public QDialog {
 public:
  Window(const AccessibilityTrust& trust, TargetFocus& focus) : trust_(trust), focus_(focus) {
    setWindowTitle(localizedText(u"Watching and Pressing Keys"));
    auto* const icon = new QLabel;
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    icon->setPixmap(programIcon().pixmap(size));
    text_->setTextFormat(Qt::RichText);
    text_->setWordWrap(true);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text_->setMinimumWidth(kWidthInLines * fontMetrics().lineSpacing());

    auto* const buttons = new QDialogButtonBox;
    auto* const checkAgain = buttons->addButton(localizedText(u"Check Again"), QDialogButtonBox::ActionRole);
    auto* const close = buttons->addButton(localizedText(u"Close"), QDialogButtonBox::RejectRole);
    checkAgain->setAutoDefault(false);
    close->setDefault(true);
    connect(checkAgain, &QPushButton::clicked, this, [this] { showDiagnosis(); });
    connect(close, &QPushButton::clicked, this, &QDialog::reject);

    auto* const row = new QHBoxLayout;
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addWidget(text_, 1);
    auto* const column = new QVBoxLayout(this);
    column->addLayout(row);
    column->addWidget(buttons);
    column->setSizeConstraint(QLayout::SetFixedSize);
    assignMnemonics(*this);
  }

  void present() {
    const bool isSameWish = lastWish_.isValid() && lastWish_.elapsed() < kSameWishMilliseconds;
    lastWish_.start();
    if (isSameWish && !isVisible()) return;
    showDiagnosis();
    if (isSameWish && isActiveWindow()) return;
    showNormal();
    raise();
    focus_.take(winId());
  }

 private:
  void showDiagnosis() {
    const auto html = htmlOf(trust_.obstacles());
    if (html == text_->text()) return;
    text_->setText(html);
    text_->setAccessibleName(windowTitle());
  }

  const AccessibilityTrust& trust_;
  TargetFocus& focus_;
  QLabel* text_ = new QLabel;
  QElapsedTimer lastWish_;
};

AccessibilityHelpWindow::AccessibilityHelpWindow(const AccessibilityTrust& trust, TargetFocus& focus)
    : window_(std::make_unique<Window>(trust, focus)) {}

AccessibilityHelpWindow::~AccessibilityHelpWindow() = default;

void AccessibilityHelpWindow::open() {
  window_->present();
}

}  // namespace quorlo
