#include "ui/library/attributed_document.h"

#include <QBrush>
#include <QFont>
#include <QImage>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextImageFormat>
#include <QUrl>
#include <QVariant>

#include <memory>
#include <string>
#include <utility>

namespace quorlo {
namespace {

// What of the attributes no QTextCharFormat holds.
struct HiddenAttributes {
  std::optional<ImageAttachment> image;
  std::map<std::string, std::string> custom;
};
using HiddenPtr = std::shared_ptr<const HiddenAttributes>;

constexpr int kHiddenProperty = QTextFormat::UserProperty + 1;
constexpr int kWidestPicture = 480;  // shown; the bytes stay as they are

QColor toQColor(const Color& color) {
  return QColor(color.red, color.green, color.blue, color.alpha);
}

Color toColor(const QColor& color) {
  const auto rgb = color.toRgb();
  return {static_cast<std::uint8_t>(rgb.red()), static_cast<std::uint8_t>(rgb.green()),
          static_cast<std::uint8_t>(rgb.blue()), static_cast<std::uint8_t>(rgb.alpha())};
}

QTextImageFormat imageFormat(QTextDocument& document, const ImageAttachment& image) {
  QTextImageFormat format;
  const auto name = QStringLiteral("picture:%1").arg(reinterpret_cast<quintptr>(image.bytes.get()));
  auto picture =
      image.bytes ? QImage::fromData(image.bytes->data(), static_cast<int>(image.bytes->size())) : QImage();
  if (picture.isNull()) {
    picture = QImage(24, 24, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::lightGray);
  }
  document.addResource(QTextDocument::ImageResource, QUrl(name), picture);
  format.setName(name);
  if (picture.width() > kWidestPicture) format.setWidth(kWidestPicture);
  return format;
}

HiddenPtr hidden(const QTextCharFormat& format) {
  return format.property(kHiddenProperty).value<HiddenPtr>();
}

TextAttributes attributesOf(const QTextCharFormat& format) {
  TextAttributes attributes;
  const auto families = format.fontFamilies().toStringList();
  if (!families.isEmpty()) attributes.fontFamily = families.front().toStdString();
  if (format.fontPointSize() > 0) attributes.fontSizePoints = format.fontPointSize();
  attributes.bold = format.fontWeight() >= QFont::DemiBold;
  attributes.italic = format.fontItalic();
  attributes.strikethrough = format.fontStrikeOut();
  // Links are shown in a colour and underlined; neither is the text's own.
  if (format.isAnchor() && !format.anchorHref().isEmpty()) {
    attributes.link = format.anchorHref().toStdString();
  } else {
    attributes.underline = format.fontUnderline();
    if (format.hasProperty(QTextFormat::ForegroundBrush))
      attributes.foreground = toColor(format.foreground().color());
  }
  if (format.hasProperty(QTextFormat::BackgroundBrush))
    attributes.background = toColor(format.background().color());
  if (const auto more = hidden(format)) {
    attributes.image = more->image;
    attributes.custom = more->custom;
  }
  return attributes;
}

// What is typed beside a picture takes on its format, but is no picture.
void appendTyped(AttributedString& text, std::u16string_view character, TextAttributes attributes) {
  if (character == u"\u2028") character = u"\n";
  if (character != u"\uFFFC") attributes.image.reset();
  text.append(character, attributes);
}

}  // namespace

QTextCharFormat charFormat(QTextDocument& document, const TextAttributes& attributes) {
  QTextCharFormat format;
  if (attributes.image) format = imageFormat(document, *attributes.image);
  if (attributes.fontFamily) format.setFontFamilies({QString::fromStdString(*attributes.fontFamily)});
  if (attributes.fontSizePoints) format.setFontPointSize(*attributes.fontSizePoints);
  if (attributes.bold) format.setFontWeight(QFont::Bold);
  if (attributes.italic) format.setFontItalic(true);
  if (attributes.underline) format.setFontUnderline(true);
  if (attributes.strikethrough) format.setFontStrikeOut(true);
  if (attributes.foreground) format.setForeground(toQColor(*attributes.foreground));
  if (attributes.background) format.setBackground(toQColor(*attributes.background));
  if (attributes.link) {
    format.setAnchor(true);
    format.setAnchorHref(QString::fromStdString(*attributes.link));
    format.setFontUnderline(true);
  }
  if (attributes.image || !attributes.custom.empty()) {
    format.setProperty(kHiddenProperty, QVariant::fromValue<HiddenPtr>(std::make_shared<HiddenAttributes>(
                                            HiddenAttributes{attributes.image, attributes.custom})));
  }
  return format;
}

void setContents(QTextDocument& document, const AttributedString& text) {
  document.setUndoRedoEnabled(false);
  document.clear();
  QTextCursor cursor(&document);
  cursor.beginEditBlock();
  text.forEachRun([&](const AttributedString::Run& run) {
    const auto characters = std::u16string_view(text.string()).substr(run.range.location, run.range.length);
    cursor.insertText(QString::fromUtf16(characters.data(), static_cast<qsizetype>(characters.size())),
                      charFormat(document, run.attributes));
  });
  cursor.endEditBlock();
  document.setUndoRedoEnabled(true);
}

AttributedString attributedString(const QTextDocument& document) {
  AttributedString text;
  for (auto block = document.begin(); block.isValid(); block = block.next()) {
    if (block != document.begin()) appendTyped(text, u"\n", attributesOf(block.charFormat()));
    for (auto part = block.begin(); !part.atEnd(); ++part) {
      const auto fragment = part.fragment();
      const auto attributes = attributesOf(fragment.charFormat());
      for (const auto character : fragment.text().toStdU16String()) {
        appendTyped(text, {&character, 1}, attributes);
      }
    }
  }
  return text;
}

}  // namespace quorlo
