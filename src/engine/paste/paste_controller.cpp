#include "engine/paste/paste_controller.h"

#include "app/settings/settings_controller.h"
#include "engine/paste/paste_notifications.h"
#include "platform/insertion/insertion_target.h"
#include "platform/typed_keys_hold.h"
#include "platform/user_notifications.h"

#include <utility>

namespace quorlo {

PasteController::PasteController(const Dependencies& dependencies)
    : use_(dependencies),
      keys_(use_.layout),
      pasteboard_(use_.generalPasteboard, use_.queue,
                  [this] { use_.notifications.post(pasteboardLostNotification()); }),
      ownWindows_(use_.application, use_.queue) {
  use_.notifications.addActionHandler(life_.guard([this](const std::string& category) {
    if (category == kDoNotShowAgain) use_.settings.setShowNotificationForExpension(false);
  }));
}

void PasteController::pasteSnippet(AttributedString content, std::shared_ptr<QLSnippet> snippet,
                                   std::u16string abbreviation, PastingCompletion completion,
                                   StandsBeforeCaret standsBeforeCaret) {
  InsertionRequest request{use_.typedKeys.begin(),      use_.frontWindow.current(), std::move(content),
                           std::move(snippet),          std::move(abbreviation),    std::move(completion),
                           std::move(standsBeforeCaret)};
  if (!insertion_) return begin(std::move(request));
  waiting_.push_back(std::move(request));
  insertion_->callOffQuestion();
}

bool PasteController::mayExpand() const {
  return use_.target.profile().method != InsertionMethod::none;
}

void PasteController::begin(InsertionRequest request) {
  insertion_ = std::make_unique<Insertion>(use_, keys_, pasteboard_, ownWindows_, std::move(request),
                                           [this] { endInsertion(); });
  insertions_.notify();
  insertion_->start();
}

void PasteController::endInsertion() {
  // Destroyed last: its hold lasts until the next one has begun.
  const auto ended = std::move(insertion_);
  if (waiting_.empty()) return;
  auto next = std::move(waiting_.front());
  waiting_.pop_front();
  begin(std::move(next));
}

}  // namespace quorlo
