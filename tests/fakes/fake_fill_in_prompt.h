#pragma once

#include "engine/fill_in/fill_in_prompt.h"
#include "platform/main_queue.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {

// A user who gives the answers that the test set, or calls the insertion off.
class FakeFillInPrompt : public FillInPrompt {
 public:
  explicit FakeFillInPrompt(MainQueue& queue) : queue_(queue) {}

  void ask(AttributedString, std::vector<FillInField> fields, Completion completion) override {
    asked.push_back(std::move(fields));
    completion_ = std::move(completion);
    queue_.runAfter(thinking, [this] { answer(answers); });
  }
  void callOff() override {
    queue_.run([this] { answer(std::nullopt); });
  }

  std::optional<FillInAnswers> answers = FillInAnswers{};
  Seconds thinking{0};
  std::vector<std::vector<FillInField>> asked;

 private:
  void answer(std::optional<FillInAnswers> given) {
    if (const auto completion = std::exchange(completion_, nullptr)) completion(std::move(given));
  }

  MainQueue& queue_;
  Completion completion_;
};

}  // namespace quorlo
