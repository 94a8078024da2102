#pragma once

#include "base/observers.h"
#include "base/subscription.h"

#include <functional>
#include <memory>
#include <vector>

namespace quorlo {

class AppWindows;
class QLCategory;
class QLSnippet;

// What is selected in the editor, and which windows are shown. The windows follow it and write into it.
// Main thread.
class NavigationModel {
 public:
  enum class Change { selectedCategory, selectedSnippets, presentsWelcomeView };

  // `windows` must outlive the model.
  explicit NavigationModel(AppWindows& windows) : windows_(windows) {}

  // Called after each change; setting what is there already changes nothing.
  Subscription observe(std::function<void(Change)> callback) { return observers_.add(std::move(callback)); }

  // Null for none. Records that have been deleted count as not selected.
  std::shared_ptr<QLCategory> selectedCategory() const;
  void setSelectedCategory(std::shared_ptr<QLCategory> category);
  std::vector<std::shared_ptr<QLSnippet>> selectedSnippets() const;
  void setSelectedSnippets(std::vector<std::shared_ptr<QLSnippet>> snippets);

  // Selects the snippet alone, and a folder that shows it unless the selected one does.
  void select(const std::shared_ptr<QLSnippet>& snippet);

  bool snippetEditorIsVisible() const;
  void showSnippetEditor();
  // Opens the editor with the snippet selected.
  void showInSnippetEditor(const std::shared_ptr<QLSnippet>& snippet);
  void showSettings();
  void closeSheets();

  // Raising the flag opens the welcome window. Whoever shows that window lowers the flag when it closes.
  bool presentsWelcomeView() const { return presentsWelcomeView_; }
  void setPresentsWelcomeView(bool presents);

 private:
  AppWindows& windows_;
  std::shared_ptr<QLCategory> selectedCategory_;
  std::vector<std::shared_ptr<QLSnippet>> selectedSnippets_;
  bool presentsWelcomeView_ = false;
  Observers<Change> observers_;
};

}  // namespace quorlo
