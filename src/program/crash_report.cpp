#include "program/crash_report.h"

#include "base/log.h"
#include "base/recent_log_tags.h"

#include <fmt/chrono.h>

#include <execinfo.h>
#include <fcntl.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <functional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

constexpr std::array kCrashes{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};
constexpr int kDeepestStack = 64;
constexpr std::string_view kFreshName = "crash-report.txt";
constexpr std::string_view kKeptPrefix = "crash-report-";
constexpr std::size_t kKeptReports = 10;

// Made before anything goes wrong: a signal handler can neither allocate nor ask for a lock.
struct Preparation {
  std::string path;
  std::string head;
  std::array<char, std::size_t{64} * 1024> stack;
};
Preparation* preparation = nullptr;

void write(int file, std::string_view text) {
  while (!text.empty()) {
    const auto written = ::write(file, text.data(), text.size());
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

void writeNumber(int file, std::uint64_t number, int digits = 1) {
  std::array<char, 20> text{};
  std::size_t start = text.size();
  for (; number > 0 || digits > 0; number /= 10, --digits)
    text[--start] = static_cast<char>('0' + number % 10);
  write(file, {text.data() + start, text.size() - start});
}

// gmtime_r is not safe in a signal handler; the calendar of <chrono> is plain arithmetic.
void writeTime(int file) {
  using namespace std::chrono;
  timespec time{};
  clock_gettime(CLOCK_REALTIME, &time);
  const sys_seconds now{seconds(time.tv_sec)};
  const auto day = floor<days>(now);
  const year_month_day date{day};
  const hh_mm_ss clock{now - day};
  writeNumber(file, static_cast<std::uint64_t>(static_cast<int>(date.year())), 4);
  write(file, "-");
  writeNumber(file, static_cast<unsigned>(date.month()), 2);
  write(file, "-");
  writeNumber(file, static_cast<unsigned>(date.day()), 2);
  write(file, " ");
  writeNumber(file, static_cast<std::uint64_t>(clock.hours().count()), 2);
  write(file, ":");
  writeNumber(file, static_cast<std::uint64_t>(clock.minutes().count()), 2);
  write(file, ":");
  writeNumber(file, static_cast<std::uint64_t>(clock.seconds().count()), 2);
  write(file, " UTC\n");
}

extern "C" void quorloCrashed(int signal) {
  const int file = open(preparation->path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (file >= 0) {
    write(file, preparation->head);
    write(file, "Time: ");
    writeTime(file);
    write(file, "Signal: ");
    writeNumber(file, static_cast<std::uint64_t>(signal));
    write(file, "\nLast tags in the log, the newest first:");
    for (std::size_t age = 0; age < RecentLogTags::kCount; ++age) {
      const auto tag = recentLogTags().tag(age);
      if (tag.empty()) break;
      write(file, " ");
      write(file, tag);
    }
    write(file, "\nStack:\n");
    std::array<void*, kDeepestStack> frames{};
    backtrace_symbols_fd(frames.data(), backtrace(frames.data(), kDeepestStack), file);
    close(file);
  }
  raise(signal);  // the handler was for once only, so that this ends the process
}

}  // namespace

void reportCrashes(const std::filesystem::path& directory, std::string_view version) {
  if (preparation != nullptr) return;
  std::error_code failure;
  std::filesystem::create_directories(directory, failure);
  // Lives as long as the process.
  preparation = new Preparation{
      (directory / kFreshName).string(), "Quorlo " + std::string(version) + " ended unexpectedly.\n", {}};
  std::array<void*, 1> frame{};
  backtrace(frame.data(), 1);  // loads what unwinding takes, which a handler must not

  stack_t stack{};
  stack.ss_sp = preparation->stack.data();
  stack.ss_size = preparation->stack.size();
  sigaltstack(&stack, nullptr);
  struct sigaction action {};
  action.sa_handler = quorloCrashed;
  action.sa_flags = static_cast<int>(SA_ONSTACK | SA_RESETHAND | SA_NODEFER);
  sigemptyset(&action.sa_mask);
  for (const int each : kCrashes) sigaction(each, &action, nullptr);
}

std::optional<std::filesystem::path> takeCrashReport(const std::filesystem::path& directory) {
  namespace fs = std::filesystem;
  const auto fresh = directory / kFreshName;
  std::error_code failure;
  if (!fs::exists(fresh, failure)) return std::nullopt;

  const auto written = std::chrono::file_clock::to_sys(fs::last_write_time(fresh, failure));
  const auto name = fmt::format("{}{:%Y-%m-%d-%H%M%S}.txt", kKeptPrefix,
                                fmt::gmtime(std::chrono::system_clock::to_time_t(
                                    std::chrono::time_point_cast<std::chrono::seconds>(written))));
  const auto kept = directory / name;
  fs::rename(fresh, kept, failure);
  if (failure) {
    logWarning("WARNING: #Cr4shRn - The crash report " + fresh.string() +
               " cannot be renamed: " + failure.message());
    return fresh;
  }

  std::vector<fs::path> reports;
  for (const auto& each : fs::directory_iterator(directory, failure)) {
    if (each.path().filename().string().starts_with(kKeptPrefix)) reports.push_back(each.path());
  }
  std::ranges::sort(reports, std::greater());  // the newest first, by their names
  for (std::size_t i = kKeptReports; i < reports.size(); ++i) fs::remove(reports[i], failure);
  return kept;
}

}  // namespace quorlo
