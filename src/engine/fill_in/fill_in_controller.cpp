#include "engine/fill_in/fill_in_controller.h"

#include "app/settings/settings_controller.h"
#include "base/log.h"
#include "engine/fill_in/fill_in_session.h"
#include "engine/paste/piece_contents.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "platform/environment/environment.h"
#include "platform/main_queue.h"
#include "platform/target_focus.h"
#include "platform/typed_keys_hold.h"
#include "store/records/snippet_type.h"
#include "text/utf.h"

#include <utility>

namespace quorlo {

FillInController::FillInController(const Dependencies& dependencies) : use_(dependencies) {}

FillInController::~FillInController() {
  if (session_) use_.view.close();
}

void FillInController::ask(AttributedString text, std::vector<FillInField> fields, Completion completion) {
  callOff();
  question_ = std::make_unique<LifeToken>();
  completion_ = std::move(completion);

  const FillInPreview preview{use_.settings.showClipboardContentInReplacementView(),
                              use_.settings.showAllMacrosInPreview()};
  auto& formatter = use_.interpreter.dateAndTimeFormatter();
  auto session = std::make_unique<FillInSession>(std::move(text), std::move(fields), preview,
                                                 momentOf(use_.environment.now()), formatter);
  use_.focus.remember();
  use_.view.open(*session, question_->guard([this](FillInView::Outcome outcome) { decide(outcome); }));
  session_ = std::move(session);
  use_.focus.take(use_.view.nativeWindow());
  if (session_->showsClipboard()) showClipboard();
}

void FillInController::callOff() {
  question_.reset();
  hold_.reset();
  if (session_) use_.view.close();
  session_.reset();
  if (auto completion = std::exchange(completion_, nullptr)) {
    use_.queue.run([completion = std::move(completion)] { completion(std::nullopt); });
  }
}

void FillInController::showClipboard() {
  use_.generalPasteboard.read({{}, question_->guard([this](const PasteboardCopy& copy) {
                                 for (const auto& item : copy.items) {
                                   const auto text = item.text();
                                   if (!text) continue;
                                   session_->setClipboard(AttributedString(toUtf16(*text)));
                                   return use_.view.refreshPreview();
                                 }
                               })});
}

// From here on keys are for the window that the user came from. They wait until it has the focus again, and
// the insertion takes over the hold.
void FillInController::decide(FillInView::Outcome outcome) {
  hold_ = use_.typedKeys.begin();
  // A key that is already on its way to the window must not change them.
  auto answers = session_->answers();
  use_.focus.giveToTarget(
      question_->guard([this, outcome, answers = std::move(answers)](bool isActive) mutable {
        end(outcome, std::move(answers), isActive);
      }));
}

void FillInController::end(FillInView::Outcome outcome, FillInAnswers answers, bool targetIsActive) {
  const auto completion = std::exchange(completion_, nullptr);
  const auto hold = std::move(hold_);
  if (outcome == FillInView::Outcome::insert && !targetIsActive) {
    logWarning(
        "WARNING: #fi7Tgn - The window that the snippet was meant for is gone; its text can be copied.");
    offerCopy();
    return completion(std::nullopt);
  }
  use_.view.close();
  session_.reset();
  if (outcome == FillInView::Outcome::cancel) return completion(std::nullopt);
  completion(std::move(answers));
}

void FillInController::offerCopy() {
  use_.focus.take(use_.view.nativeWindow());
  use_.view.offerCopy(question_->guard([this](FillInView::Outcome outcome) {
    if (outcome == FillInView::Outcome::insert) copyText();
    use_.view.close();
    session_.reset();
  }));
}

void FillInController::copyText() {
  const auto evaluated =
      use_.interpreter.evaluate(session_->snippetText(), kAllMacroTypes, session_->answers());
  use_.generalPasteboard.setContents({{pieceContents(evaluated.text, SnippetType::formatted)}, {}, false});
}

}  // namespace quorlo
