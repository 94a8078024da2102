#include "ui/import/separator_control.h"

#include "import/csv/separators.h"
#include "ui/qt_text.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPalette>
#include <QToolButton>

#include <string_view>

namespace quorlo {
namespace {

std::u16string_view nameOf(char16_t separator) {
  switch (separator) {
    case u',':
      return u"Comma";
    case u';':
      return u"Semicolon";
    case u'\t':
      return u"Tab";
    default:
      return u"Vertical Bar";
  }
}

// Where the style hardly tells a chosen button from others, as in dark themes.
void showWhetherChosen(QToolButton& segment) {
  QPalette palette;
  if (segment.isChecked()) {
    palette.setBrush(QPalette::Button, palette.highlight());
    palette.setBrush(QPalette::ButtonText, palette.highlightedText());
  }
  segment.setPalette(palette);
}

}  // namespace

SeparatorControl::SeparatorControl(const std::function<void(std::size_t)>& chosen)
    : segments_(new QButtonGroup(this)) {
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  for (const auto separator : kSeparators) {
    auto* const segment = new QToolButton;
    segment->setText(localizedText(nameOf(separator)));
    segment->setCheckable(true);
    segment->setFocusPolicy(Qt::StrongFocus);
    segments_->addButton(segment, static_cast<int>(segments_->buttons().size()));
    connect(segment, &QToolButton::toggled, this, [segment] { showWhetherChosen(*segment); });
    row->addWidget(segment);
  }
  row->addStretch();
  connect(segments_, &QButtonGroup::idClicked, this,
          [chosen](int segment) { chosen(static_cast<std::size_t>(segment)); });
}

void SeparatorControl::setSegment(std::size_t segment) {
  auto* const button = segments_->button(static_cast<int>(segment));
  button->setChecked(true);
  setFocusProxy(button);
}

}  // namespace quorlo
