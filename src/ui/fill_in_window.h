#pragma once

#include "engine/fill_in/fill_in_view.h"

#include <memory>

namespace quorlo {

class SettingsController;

// The fill-in window: all fields of a snippet one below the other, a preview of the text, and the buttons.
// Made once and kept, so that it opens at once. Needs the QApplication.
class FillInWindow final : public FillInView {
 public:
  // The settings must outlive the window.
  explicit FillInWindow(const SettingsController& settings);
  ~FillInWindow() override;

  void open(FillInSession& session, std::function<void(Outcome)> done) override;
  void refreshPreview() override;
  void offerCopy(std::function<void(Outcome)> done) override;
  void close() override;
  std::uintptr_t nativeWindow() const override;

 private:
  class Dialog;

  std::unique_ptr<Dialog> dialog_;
};

}  // namespace quorlo
