#pragma once

#include "base/life_token.h"
#include "engine/fill_in/fill_in_prompt.h"
#include "engine/fill_in/fill_in_view.h"
#include "platform/pasteboard.h"
#include "platform/typed_keys_hold.h"

#include <memory>
#include <vector>

namespace quorlo {

class Environment;
class FillInSession;
class MainQueue;
class QLSnippetMacroInterpreter;
class SettingsController;
class TargetFocus;

// Lets the user fill in a snippet's fields in a window, and sees to it that what is typed before, in and
// after the window goes where it belongs. Main thread.
class FillInController : public FillInPrompt {
 public:
  struct Dependencies {
    MainQueue& queue;
    Pasteboard& generalPasteboard;
    TargetFocus& focus;
    TypedKeysHold& typedKeys;
    SettingsController& settings;
    const Environment& environment;
    const QLSnippetMacroInterpreter& interpreter;
    FillInView& view;
  };

  // The references must outlive the controller.
  explicit FillInController(const Dependencies& dependencies);
  ~FillInController() override;

  // Where the window that the user came from is gone, the prompt completes with none, and the user may copy
  // the text instead.
  void ask(AttributedString text, std::vector<FillInField> fields, Completion completion) override;
  void callOff() override;

 private:
  void showClipboard();
  void decide(FillInView::Outcome outcome);
  void end(FillInView::Outcome outcome, FillInAnswers answers, bool targetIsActive);
  void offerCopy();
  void copyText();

  Dependencies use_;
  std::unique_ptr<FillInSession> session_;
  Completion completion_;
  std::unique_ptr<TypedKeysHold::Hold> hold_;
  std::unique_ptr<LifeToken>
      question_;  // renewed with each question: what belongs to an earlier one is dropped
};

}  // namespace quorlo
