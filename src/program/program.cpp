#include "program/program.h"

#include "base/core_dumps.h"
#include "base/counted.h"
#include "base/log.h"
#include "macros/find_macros.h"
#include "program/crash_report.h"
#include "program/lost_display_notice.h"
#include "program/program_parts.h"
#include "program/running_instance.h"
#include "store/exchange/library_document.h"

#include <fmt/format.h>

#include <chrono>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

constexpr std::chrono::milliseconds kInstancePatience{3000};

// The one that runs gets what this one was asked for.
Status handOver(const Program::Options& options) {
  auto files = options.files;
  if (options.library) files.push_back(*options.library);
  logInfo("Quorlo is already running on this display, and is asked instead.");
  return files.empty() ? RunningInstance().reopen() : RunningInstance().open(files);
}

Status addLibrary(PersistenceController& persistence, const std::filesystem::path& file) {
  const auto report = readLibraryFile(file, persistence.managedObjectContext());
  if (!report) return report.error();
  persistence.save();
  logWarnings(report.value());
  logInfo(fmt::format("Added {} from {}.",
                      counted(report.value().addedSnippets.size(), "snippet", "snippets"), file.string()));
  return {};
}

}  // namespace

Program::Program(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

// Whatever ended the event loop.
Program::~Program() {
  parts_->delegate.applicationWillTerminate();
}

Result<std::unique_ptr<Program>> Program::start(const Options& options) {
  auto ground = std::make_unique<Ground>();
  reportCrashes(ground->environment.dataDirectory(), QUORLO_VERSION);

  X11Desktop::Options desktopOptions;
  desktopOptions.insertionTable = [&settings = ground->insertion]() -> const InsertionTable& {
    return settings.table();
  };
  desktopOptions.guardProgram = ground->programFile.parent_path() / "quorlo-keyboard-guard";
  desktopOptions.pieceWasIgnored = [&told = ground->pieceWasIgnored](const auto& application,
                                                                     const auto& name) {
    if (told) told(application, name);
  };
  desktopOptions.connectionLost = [quit = options.quit] {
    sayThatTheDisplayIsLost();
    quit(1);
  };
  auto desktop = X11Desktop::connect(desktopOptions, ground->queue);
  if (!desktop) return desktop.error();

  // One that nobody can ask is just starting or just ending.
  const auto patience = RunningInstance().isThere() ? std::chrono::milliseconds(0) : kInstancePatience;
  auto instance = SingleInstance::acquire(desktop.value()->displayName(), patience);
  if (!instance) {
    if (!RunningInstance().isThere()) return instance.error();
    if (const auto status = handOver(options); !status) return status.error();
    return std::unique_ptr<Program>();
  }

  // Until debug mode says otherwise.
  allowCoreDumps(false);
  auto library =
      PersistenceController::open(ground->queue, ground->environment, {.findMacroStrings = findMacroStrings});
  if (!library) return library.error();
  if (options.library) {
    if (const auto status = addLibrary(*library.value(), *options.library); !status) return status.error();
  }

  auto parts = std::make_unique<Parts>(std::move(ground), std::move(instance).value(),
                                       std::move(desktop).value(), std::move(library).value(), options.quit);
  parts->delegate.applicationDidFinishLaunching();
  parts->rollingBackups.start();
  parts->service.emplace(parts->requests());
  if (parts->persistence.wasLeftUnclean()) parts->checkLibraryInBackground();
  if (!options.files.empty()) parts->delegate.open(options.files);
  if (options.abbreviations) parts->settings.setAbbreviationsEnabled(*options.abbreviations);
  if (!parts->settings.abbreviationsEnabled()) {
    logInfo("Abbreviations are off. Switch them on with: quorlo --abbreviations on");
  }
  return std::unique_ptr<Program>(new Program(std::move(parts)));
}

void Program::terminate() {
  parts_->delegate.terminate();
}

bool Program::mayEnd() {
  return parts_->delegate.applicationShouldTerminate() == AppDelegate::TerminateReply::terminateNow;
}

}  // namespace quorlo
