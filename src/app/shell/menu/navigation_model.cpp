#include "app/shell/menu/navigation_model.h"

#include "app/shell/app_windows.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"

#include <utility>

namespace quorlo {
namespace {

bool isGone(const std::shared_ptr<QLSnippet>& snippet) {
  return snippet->isDeleted();
}

}  // namespace

std::shared_ptr<QLCategory> NavigationModel::selectedCategory() const {
  return selectedCategory_ && !selectedCategory_->isDeleted() ? selectedCategory_ : nullptr;
}

void NavigationModel::setSelectedCategory(std::shared_ptr<QLCategory> category) {
  if (category == selectedCategory_) return;
  selectedCategory_ = std::move(category);
  observers_.notify(Change::selectedCategory);
}

std::vector<std::shared_ptr<QLSnippet>> NavigationModel::selectedSnippets() const {
  auto snippets = selectedSnippets_;
  std::erase_if(snippets, isGone);
  return snippets;
}

void NavigationModel::setSelectedSnippets(std::vector<std::shared_ptr<QLSnippet>> snippets) {
  if (snippets == selectedSnippets_) return;
  selectedSnippets_ = std::move(snippets);
  observers_.notify(Change::selectedSnippets);
}

void NavigationModel::select(const std::shared_ptr<QLSnippet>& snippet) {
  const auto shown = selectedCategory();
  if (!shown || !shown->predicate().evaluate(*snippet)) setSelectedCategory(snippet->category());
  setSelectedSnippets({snippet});
}

bool NavigationModel::snippetEditorIsVisible() const {
  return windows_.isWindowVisible(kSnippetEditorWindow);
}

void NavigationModel::showSnippetEditor() {
  windows_.openWindow(kSnippetEditorWindow);
}

void NavigationModel::showInSnippetEditor(const std::shared_ptr<QLSnippet>& snippet) {
  select(snippet);
  showSnippetEditor();
}

void NavigationModel::showSettings() {
  windows_.openWindow(kSettingsWindow);
}

void NavigationModel::closeSheets() {
  windows_.closeSheets();
}

void NavigationModel::setPresentsWelcomeView(bool presents) {
  if (presents == presentsWelcomeView_) return;
  presentsWelcomeView_ = presents;
  if (presents) windows_.openWindow(kWelcomeWindow);
  observers_.notify(Change::presentsWelcomeView);
}

}  // namespace quorlo
