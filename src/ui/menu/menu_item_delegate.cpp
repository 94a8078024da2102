#include "ui/menu/menu_item_delegate.h"

#include "ui/menu/menu_item_model.h"
#include "ui/symbols.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QStyle>
#include <QStyleOptionViewItem>

#include <algorithm>

namespace quorlo {
namespace {

using Row = MenuItemModel::Row;
using Kind = MenuItem::Kind;

constexpr int kMargin = 6;  // around a row's contents, and between them
constexpr int kCorner = 5;

const Row& rowOf(const QModelIndex& index) {
  return static_cast<const MenuItemModel*>(index.model())->row(index.row());
}

QFont smaller(QFont font) {
  if (font.pointSizeF() > 0) {
    font.setPointSizeF(font.pointSizeF() * 0.88);
  } else {
    font.setPixelSize(std::max(1, font.pixelSize() * 7 / 8));
  }
  return font;
}

QColor mixed(const QColor& a, const QColor& b, float part) {
  return QColor::fromRgbF(a.redF() * (1 - part) + b.redF() * part,
                          a.greenF() * (1 - part) + b.greenF() * part,
                          a.blueF() * (1 - part) + b.blueF() * part);
}

// One row being drawn. Contents are taken off `rest_` from both ends, mirrored where the language is written
// from right to left.
class RowPainter {
 public:
  RowPainter(QPainter& painter, const QStyleOptionViewItem& option)
      : painter_(painter),
        option_(option),
        isHighlighted_(option.state.testFlag(QStyle::State_Selected)),
        text_(option.palette.color(QPalette::Active,
                                   isHighlighted_ ? QPalette::HighlightedText : QPalette::Text)),
        back_(option.palette.color(QPalette::Active, isHighlighted_ ? QPalette::Highlight : QPalette::Base)),
        rest_(option.rect.adjusted(2 * kMargin, 0, -2 * kMargin, 0)) {
    painter_.setRenderHint(QPainter::Antialiasing);
    if (!isHighlighted_) return;
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(back_);
    painter_.drawRoundedRect(option.rect.adjusted(kMargin - 1, 0, 1 - kMargin, 0), kCorner, kCorner);
  }

  void snippet(const Row& row) {
    const auto& type = row.item.snippet->type;
    const auto name = type ? symbolName(*type) : std::string_view("text.justify.left");
    image(name, iconSize());
    const int line = option_.fontMetrics.lineSpacing();
    const auto whole = rest_;
    rest_.setTop(whole.center().y() - (row.preview.isEmpty() ? line / 2 : line) + 1);
    rest_.setHeight(line);
    if (!row.abbreviation.isEmpty()) badge(row.abbreviation);
    drawText(row.title, option_.font, text_);
    rest_ = QRect(whole.left(), whole.center().y() + 1, whole.width(), line);
    drawText(row.preview, smaller(option_.font), mixed(text_, back_, 0.35F));
  }

  void command(const Row& row) {
    const auto& item = row.item;
    if (item.submenu.empty() && item.hasCheckMark) {
      trailing(QStringLiteral("checkmark"));
    } else if (!item.submenu.empty()) {
      trailing(QStringLiteral("chevron.right"));
    }
    image(item.image, iconSize());
    drawText(row.title, option_.font, text_);
  }

  void header(const Row& row) {
    auto font = smaller(option_.font);
    font.setBold(true);
    rest_.adjust(-kMargin / 2, 0, 0, -kMargin / 3);
    drawText(row.title, font, mixed(text_, back_, 0.4F), Qt::AlignBottom);
  }

  void noResults(const Row& row) {
    painter_.setPen(mixed(text_, back_, 0.45F));
    painter_.drawText(rest_, Qt::AlignCenter, row.title);
  }

  void separator() {
    painter_.setRenderHint(QPainter::Antialiasing, false);
    painter_.setPen(mixed(text_, back_, 0.85F));
    const int middle = option_.rect.center().y();
    painter_.drawLine(rest_.left() - kMargin, middle, rest_.right() + kMargin, middle);
  }

 private:
  int iconSize() const { return option_.fontMetrics.height(); }

  QRect mirrored(const QRect& rect) const {
    return QStyle::visualRect(option_.direction, option_.rect, rect);
  }

  void drawSymbol(const QString& name, const QRect& place) {
    const auto mode = isHighlighted_ ? QIcon::Selected : QIcon::Normal;
    symbol(name).paint(&painter_, mirrored(place), Qt::AlignCenter, mode);
  }

  // Also without an image, so that titles stand one below the other.
  void image(std::string_view name, int size) {
    if (!name.empty()) {
      const auto text = QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
      drawSymbol(text, {rest_.left(), rest_.center().y() - size / 2 + 1, size, size});
    }
    rest_.setLeft(rest_.left() + size + kMargin + 2);
  }

  void trailing(const QString& name) {
    const int size = iconSize() * 4 / 5;
    auto place = QRect(rest_.right() - size, rest_.center().y() - size / 2 + 1, size, size);
    if (name.startsWith(QStringLiteral("chevron")) && option_.direction == Qt::RightToLeft) {
      painter_.save();
      painter_.translate(2 * mirrored(place).center().x() + 1, 0);
      painter_.scale(-1, 1);
      drawSymbol(name, place);
      painter_.restore();
    } else {
      drawSymbol(name, place);
    }
    rest_.setRight(place.left() - kMargin);
  }

  void badge(const QString& abbreviation) {
    const auto font = smaller(option_.font);
    const QFontMetrics metrics(font);
    const int widest = rest_.width() * 2 / 5;
    const auto shown = metrics.elidedText(abbreviation, Qt::ElideRight, widest);
    const int width = metrics.horizontalAdvance(shown) + 2 * kMargin;
    const auto place = mirrored({rest_.right() - width, rest_.top(), width, rest_.height()});
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(mixed(back_, text_, isHighlighted_ ? 0.22F : 0.09F));
    painter_.drawRoundedRect(place, 4, 4);
    painter_.setFont(font);
    painter_.setPen(mixed(text_, back_, 0.15F));
    followDirectionOf(shown);
    painter_.drawText(place, Qt::AlignCenter, shown);
    rest_.setRight(rest_.right() - width - kMargin);
  }

  // An abbreviation such as ";sig" is read as it is typed, in a menu from right to left, too.
  void followDirectionOf(const QString& text) {
    painter_.setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
  }

  void drawText(const QString& text, const QFont& font, const QColor& color,
                Qt::Alignment vertical = Qt::AlignVCenter) {
    const auto alignment =
        QStyle::visualAlignment(option_.direction, Qt::AlignLeft) | Qt::AlignAbsolute | vertical;
    followDirectionOf(text);
    painter_.setFont(font);
    painter_.setPen(color);
    painter_.drawText(mirrored(rest_), static_cast<int>(alignment) | Qt::TextSingleLine,
                      QFontMetrics(font).elidedText(text, Qt::ElideRight, rest_.width()));
  }

  QPainter& painter_;
  const QStyleOptionViewItem& option_;
  bool isHighlighted_;
  QColor text_;
  QColor back_;
  QRect rest_;
};

}  // namespace

void MenuItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
  painter->save();
  const auto& row = rowOf(index);
  RowPainter row_(*painter, option);
  switch (row.item.kind) {
    case Kind::snippet:
      row_.snippet(row);
      break;
    case Kind::command:
      row_.command(row);
      break;
    case Kind::header:
      row_.header(row);
      break;
    case Kind::noResults:
      row_.noResults(row);
      break;
    case Kind::separator:
      row_.separator();
      break;
    case Kind::search:
      break;
  }
  painter->restore();
}

QSize MenuItemDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const int line = option.fontMetrics.lineSpacing();
  const auto height = [&] {
    switch (rowOf(index).item.kind) {
      case Kind::snippet:
        return 2 * line + kMargin;
      case Kind::separator:
        return kMargin + 1;
      case Kind::noResults:
        return 2 * line + kMargin;
      case Kind::header:
      case Kind::command:
      case Kind::search:
        break;
    }
    return line + kMargin + 2;
  };
  const auto& row = rowOf(index);
  const int icon = option.fontMetrics.height();
  return {option.fontMetrics.horizontalAdvance(row.title) + 2 * icon + 8 * kMargin, height()};
}

}  // namespace quorlo
