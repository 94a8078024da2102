#pragma once

#include <QTreeView>

#include <memory>
#include <vector>

namespace quorlo {

class QLSnippet;
class SettingsController;
class SnippetListModel;

// The list of the snippets, which looks and is sorted as the settings say; sorting by a column changes them.
// The settings outlive the view.
class SnippetListView final : public QTreeView {
  Q_OBJECT

 public:
  SnippetListView(SnippetListModel& model, SettingsController& settings);

  void showSortation();
  void showUseCounts();

  std::vector<std::shared_ptr<QLSnippet>> selectedSnippets() const;
  // Those that the list shows.
  void select(const std::vector<std::shared_ptr<QLSnippet>>& snippets);

 protected:
  void startDrag(Qt::DropActions actions) override;

 private:
  SnippetListModel& snippets_;
  SettingsController& settings_;
};

}  // namespace quorlo
