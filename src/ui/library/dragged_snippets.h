#pragma once

#include <QByteArray>
#include <QMimeData>

#include <functional>
#include <memory>
#include <vector>

namespace quorlo {

class ManagedObjectContext;
class QLCategory;
class QLSnippet;

// Snippets on their way out of a list, or a folder with its snippets: their exchange forms for another Quorlo
// and plain text for any program, made only when somebody takes them. Dropped in the same process they are
// the records themselves.
class DraggedSnippets final : public QMimeData {
 public:
  explicit DraggedSnippets(std::vector<std::shared_ptr<QLSnippet>> snippets);
  // The context outlives the drag.
  DraggedSnippets(const ManagedObjectContext& context, const QLCategory& folder);

  // What a folder of the same process takes; none of a dragged folder.
  const std::vector<std::shared_ptr<QLSnippet>>& snippets() const { return snippets_; }

  QStringList formats() const override;
  bool hasFormat(const QString& type) const override { return formats().contains(type); }

 protected:
  QVariant retrieveData(const QString& type, QMetaType preferred) const override;

 private:
  std::vector<std::shared_ptr<QLSnippet>> snippets_;
  QString type_;
  std::function<QByteArray()> exchangeForm_;
  std::function<QString()> plainText_;
};

}  // namespace quorlo
