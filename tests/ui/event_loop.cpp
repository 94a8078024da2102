#include "ui/event_loop.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <memory>

namespace quorlo {
namespace {

// One application for all tests of the program, on no screen.
class ApplicationEnvironment : public testing::Environment {
 public:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    application_ = std::make_unique<QApplication>(argc_, argv_);
    application_->setQuitOnLastWindowClosed(false);
  }
  void TearDown() override { application_.reset(); }

 private:
  int argc_ = 1;
  char name_[6] = "tests";
  char* argv_[2] = {name_, nullptr};
  std::unique_ptr<QApplication> application_;
};

const auto* const kEnvironment = testing::AddGlobalTestEnvironment(new ApplicationEnvironment);

}  // namespace

bool runEventLoopUntil(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  QTimer heartbeat;  // lets the loop below wake to look at the condition
  heartbeat.start(1);
  while (!condition() && std::chrono::steady_clock::now() < deadline) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return condition();
}

void runEventLoopFor(Seconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  runEventLoopUntil([&] { return std::chrono::steady_clock::now() >= end; });
}

}  // namespace quorlo
