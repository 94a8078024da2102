#pragma once

#include "engine/abbreviations_monitor.h"

#include <QPlainTextEdit>

#include <functional>
#include <string_view>

namespace quorlo {

class QLSnippetMacroInterpreter;
class SettingsController;

// A field in which abbreviations expand as they would in any other application. The monitor leaves the
// program's own windows alone, so the field does the same by itself: it finds what the monitor would find
// and evaluates macros, taking the defaults of what would be asked. No clipboard and no key press is used.
class TryOutEdit : public QPlainTextEdit {
 public:
  using FindSnippet = std::function<AbbreviationsMonitor::Match(std::u16string_view typed)>;

  // The references must outlive the field.
  TryOutEdit(const SettingsController& settings, const QLSnippetMacroInterpreter& interpreter,
             FindSnippet find);

  // Called after each expansion.
  void setExpanded(std::function<void()> expanded) { expanded_ = std::move(expanded); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  bool expand(const QString& delimiter);

  const SettingsController& settings_;
  const QLSnippetMacroInterpreter& interpreter_;
  FindSnippet find_;
  std::function<void()> expanded_;
};

}  // namespace quorlo
