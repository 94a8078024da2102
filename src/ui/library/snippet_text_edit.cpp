#include "ui/library/snippet_text_edit.h"

#include "store/records/snippet_type.h"
#include "ui/library/attributed_document.h"

#include <QBuffer>
#include <QFile>
#include <QFontDatabase>
#include <QImage>
#include <QImageReader>
#include <QMimeData>
#include <QMimeDatabase>
#include <QSignalBlocker>
#include <QTextCharFormat>
#include <QTextCursor>

#include <cstdint>
#include <memory>
#include <vector>

namespace quorlo {

SnippetTextEdit::SnippetTextEdit(QWidget* parent) : QTextEdit(parent) {
  setTabChangesFocus(false);
}

void SnippetTextEdit::setSnippetText(const AttributedString& text, SnippetType type) {
  const QSignalBlocker blocker(this);
  setAcceptRichText(type == SnippetType::formatted || type == SnippetType::image);
  document()->setDefaultFont(type == SnippetType::code ? QFontDatabase::systemFont(QFontDatabase::FixedFont)
                                                       : font());
  setCurrentCharFormat({});
  setContents(*document(), text);
  moveCursor(QTextCursor::Start);
}

AttributedString SnippetTextEdit::snippetText() const {
  auto text = attributedString(*document());
  return isRich() ? text : AttributedString(text.string());
}

void SnippetTextEdit::toggleBold() {
  setFontWeight(fontWeight() >= QFont::DemiBold ? QFont::Normal : QFont::Bold);
}

void SnippetTextEdit::toggleItalic() {
  setFontItalic(!fontItalic());
}

void SnippetTextEdit::toggleUnderline() {
  setFontUnderline(!fontUnderline());
}

bool SnippetTextEdit::insertPicture(const QString& fileName) {
  QFile file(fileName);
  if (QImageReader::imageFormat(fileName).isEmpty() || !file.open(QIODevice::ReadOnly)) return false;
  insertPicture(file.readAll(), QMimeDatabase().mimeTypeForFile(fileName).name().toStdString());
  return true;
}

void SnippetTextEdit::insertPicture(const QByteArray& bytes, const std::string& mediaType) {
  const auto* const start = reinterpret_cast<const std::uint8_t*>(bytes.constData());
  TextAttributes attributes;
  attributes.image =
      ImageAttachment{std::make_shared<std::vector<std::uint8_t>>(start, start + bytes.size()), mediaType};
  textCursor().insertText(QString(QChar::ObjectReplacementCharacter), charFormat(*document(), attributes));
  setCurrentCharFormat({});
}

bool SnippetTextEdit::canInsertFromMimeData(const QMimeData* source) const {
  return (isRich() && source->hasImage()) || QTextEdit::canInsertFromMimeData(source);
}

void SnippetTextEdit::insertFromMimeData(const QMimeData* source) {
  const auto picture = isRich() && source->hasImage() ? source->imageData().value<QImage>() : QImage();
  if (picture.isNull()) {
    QTextEdit::insertFromMimeData(source);
    return;
  }
  QByteArray bytes;
  QBuffer buffer(&bytes);
  picture.save(&buffer, "PNG");
  insertPicture(bytes, "image/png");
}

}  // namespace quorlo
