#pragma once

#include "text/attributed_string.h"

#include <QTextEdit>

namespace quorlo {

enum class SnippetType;

// The text of one snippet: with formats and pictures where the type has them, plain otherwise, in letters of
// equal width for code.
class SnippetTextEdit final : public QTextEdit {
  Q_OBJECT

 public:
  explicit SnippetTextEdit(QWidget* parent = nullptr);

  // Does not count as an edit. The undo history begins anew.
  void setSnippetText(const AttributedString& text, SnippetType type);
  AttributedString snippetText() const;

  bool isRich() const { return acceptRichText(); }

  // What the format bar does, to the selection or to what is typed next.
  void toggleBold();
  void toggleItalic();
  void toggleUnderline();

  // Puts the picture of the file, as it is, at the cursor; false when it is none.
  bool insertPicture(const QString& fileName);

 protected:
  bool canInsertFromMimeData(const QMimeData* source) const override;
  void insertFromMimeData(const QMimeData* source) override;

 private:
  void insertPicture(const QByteArray& bytes, const std::string& mediaType);
};

}  // namespace quorlo
