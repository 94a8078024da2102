#include "cli/command_session.h"

#include "app/settings/settings_controller.h"
#include "app/settings/stored_user_defaults.h"
#include "base/core_dumps.h"
#include "base/log.h"
#include "cli/error_text.h"
#include "cli/library/library_access.h"
#include "cli/terminal_text.h"
#include "platform/environment/environment.h"
#include "platform/main_queue.h"
#include "store/context/managed_object_context.h"

#include <nlohmann/json.hpp>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <iostream>
#include <optional>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

constexpr std::size_t kLargestInput = std::size_t{256} << 20;

// A command is over before anything delayed would be due.
class NoLaterQueue final : public MainQueue {
 public:
  void run(Task) override {}
  void runAfter(Seconds, Task) override {}
  Instant now() const override { return std::chrono::steady_clock::now(); }
};

void complain(std::string_view message) {
  std::cerr << "quorlo: " << printable(message, LineBreaks::kept) << "\n";
}

}  // namespace

CommandSession::CommandSession(Services services, bool json)
    : services_(std::move(services)),
      json_(json),
      output_(STDOUT_FILENO),
      log_(redirectLog([](LogLevel level, std::string_view line) {
        if (level == LogLevel::error || level == LogLevel::warning) complain(line);
      })),
      queue_(std::make_unique<NoLaterQueue>()) {}

CommandSession::~CommandSession() = default;

ExitStatus CommandSession::run(const std::function<Result<ExitStatus>(CommandSession&)>& action) {
  const auto outcome = action(*this);
  if (!outcome) complain(inWords(outcome.error().message));
  if (const auto written = output_.finish(); !written) {
    complain(written.error().message);
    return ExitStatus::failed;
  }
  if (!outcome || output_.readerIsGone()) return ExitStatus::failed;
  return outcome.value();
}

StoredUserDefaults& CommandSession::defaults() {
  if (!defaults_) defaults_ = services_.openDefaults();
  return *defaults_;
}

SettingsController& CommandSession::settings() {
  if (!settings_) {
    settings_ = std::make_unique<SettingsController>(
        defaults(), *queue_, [this] { return environment().now(); }, [] { return std::nullopt; });
  }
  return *settings_;
}

Result<std::unique_ptr<ManagedObjectContext>> CommandSession::openLibrary(LibraryUse use) {
  allowCoreDumps(settings().debugModeEnabled());
  if (libraryIsMissing(environment())) {
    note("There is no library yet. The first \"quorlo add\" or \"quorlo import\" begins one.");
    return emptyLibrary(environment());
  }
  return use == LibraryUse::changing ? openOrBeginLibrary(environment()) : openLibraryToRead(environment());
}

Result<std::unique_ptr<ManagedObjectContext>> CommandSession::beginLibrary() {
  allowCoreDumps(settings().debugModeEnabled());
  return openOrBeginLibrary(environment());
}

void CommandSession::printJson(const nlohmann::ordered_json& document) {
  // Ill-formed UTF-8 cannot come from texts, but from names of files.
  output_.write(document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
  output_.write("\n");
}

void CommandSession::note(std::string_view message) {
  complain(message);
}

bool CommandSession::canAsk() const {
  return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

bool CommandSession::confirm(std::string_view question) {
  std::cerr << question << " [y/N] ";
  std::string answer;
  std::getline(std::cin, answer);
  return answer == "y" || answer == "Y" || answer == "yes";
}

Result<std::string> CommandSession::readInput() {
  std::string input;
  std::array<char, 0x10000> block{};
  for (;;) {
    const auto count = ::read(STDIN_FILENO, block.data(), block.size());
    if (count == 0) return input;
    if (count < 0) {
      if (errno == EINTR) continue;
      return Error{"Standard input cannot be read: " + std::generic_category().message(errno) + "."};
    }
    input.append(block.data(), static_cast<std::size_t>(count));
    if (input.size() > kLargestInput) return Error{"Standard input is larger than 256 MiB."};
  }
}

}  // namespace quorlo
