// What many programs that write to one library at once lose or make twice: eight commands that all want the
// same abbreviation and folder, and a minute of commands of which one in four is killed, beside a Quorlo that
// is killed every two seconds.
//
// quorlo_writers_bench [--figures FILE]; the program is the one of the same build.

#include "figures.h"
#include "run_benchmark.h"
#include "virtual_desktop/child_process.h"
#include "virtual_desktop/quorlo_program.h"
#include "virtual_desktop/virtual_desktop.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

using nlohmann::json;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int kProcesses = 8;
constexpr int kRounds = 125;
constexpr int kWorkers = 6;
constexpr std::chrono::seconds kStorm{60};
constexpr std::chrono::seconds kLifeOfQuorlo{2};
constexpr std::chrono::seconds kLongestCommand{60};

// Commands of the program in the home of a desktop.
class Shell {
 public:
  explicit Shell(const VirtualDesktop& desktop) : desktop_(desktop) {}

  ChildProcess start(std::vector<std::string> words,
                     const std::filesystem::path& output = "/dev/null") const {
    words.insert(words.begin(), QUORLO);
    return ChildProcess({.words = std::move(words), .variables = desktop_.variables(), .output = output});
  }

  json list(const std::vector<std::string>& options) const {
    const auto output = desktop_.directory() / "listed";
    std::filesystem::remove(output);  // programs append to it
    std::vector<std::string> words{"list", "--json"};
    words.insert(words.end(), options.begin(), options.end());
    if (start(words, output).waitForEnd(kLongestCommand) != 0)
      throw std::runtime_error("quorlo list failed.");
    std::ostringstream text;
    text << std::ifstream(output).rdbuf();
    return json::parse(text.str())["snippets"];
  }

 private:
  const VirtualDesktop& desktop_;
};

// Of 1,000 adds, how many gave an abbreviation a second time or made a folder a second time.
double duplicatesOfParallelAdds(const Shell& shell) {
  for (int round = 0; round < kRounds; ++round) {
    std::vector<ChildProcess> adds;
    for (int i = 0; i < kProcesses; ++i) {
      adds.push_back(shell.start({"add", "-a", fmt::format("dup{}", round), "-t", std::to_string(i), "-f",
                                  fmt::format("Folder {}", round)}));
    }
    for (auto& each : adds) each.waitForEnd(kLongestCommand);
  }
  std::multiset<std::string> abbreviations;
  std::map<std::string, std::set<std::string>> folders;
  for (const auto& each : shell.list({})) {
    abbreviations.insert(each["abbreviation"].get<std::string>());
    folders[each["folder"]["title"]].insert(each["folder"]["uuid"].get<std::string>());
  }
  std::size_t twice = 0;
  for (int round = 0; round < kRounds; ++round) {
    const auto count = abbreviations.count(fmt::format("dup{}", round));
    if (count == 0) throw std::runtime_error("No parallel add succeeded.");
    twice += count - 1;
  }
  for (const auto& [title, uuids] : folders) twice += uuids.size() - 1;
  return static_cast<double>(twice);
}

// What one worker knows of its snippets: each may be as it was acknowledged last, or as a command that was
// killed would have left it.
class Worker {
 public:
  Worker(const Shell& shell, int number)
      : shell_(shell), name_(fmt::format("w{}-", number)), random_(number + 1U) {}

  void workUntil(steady_clock::time_point end) {
    while (steady_clock::now() < end) {
      if (random_() % 3 == 0 || settled_.empty()) {
        add();
      } else {
        change(random_() % settled_.size());
      }
      ++commands_;
    }
  }

  int commands() const { return commands_; }

  // How many snippets are in a state that nothing explains.
  int lost(const std::map<std::string, std::string>& stored) const {
    int lost = 0;
    for (const auto& [snippet, states] : allowed_) {
      const auto found = stored.find(snippet);
      lost += states.contains(found == stored.end() ? "" : found->second) ? 0 : 1;
    }
    return lost;
  }

 private:
  void add() {
    const auto snippet = name_ + std::to_string(++made_);
    run({"add", "-a", snippet, "-t", "first"}, snippet, "", "live first");
  }

  void change(std::size_t which) {
    const auto snippet = settled_[which];
    const auto before = *allowed_[snippet].begin();
    const auto text = before.substr(before.find(' ') + 1);
    if (before.starts_with("trashed")) return run({"restore", snippet}, snippet, before, "live " + text);
    if (random_() % 2 == 0) return run({"remove", snippet}, snippet, before, "trashed " + text);
    const auto fresh = std::to_string(random_());
    return run({"edit", snippet, "-t", fresh}, snippet, before, "live " + fresh);
  }

  void run(std::vector<std::string> words, const std::string& snippet, const std::string& before,
           const std::string& after) {
    auto process = shell_.start(std::move(words));
    const bool isKilled = random_() % 4 == 0;
    if (isKilled) {
      std::this_thread::sleep_for(milliseconds(random_() % 60));
      process.signal(SIGKILL);
    }
    const auto status = process.waitForEnd(kLongestCommand);
    auto& states = allowed_[snippet];
    if (status == 0) {
      states = {after};
      if (before.empty()) settled_.push_back(snippet);
    } else if (isKilled) {
      states = {before, after};
      std::erase(settled_, snippet);
    } else {
      throw std::runtime_error(fmt::format("A command on {} failed with {}.", snippet, status));
    }
  }

  const Shell& shell_;
  const std::string name_;
  std::mt19937 random_;
  int made_ = 0;
  int commands_ = 0;
  std::map<std::string, std::set<std::string>> allowed_;
  std::vector<std::string> settled_;  // those whose state is known
};

double lostInAStorm(VirtualDesktop& desktop, const Shell& shell) {
  std::vector<Worker> workers;
  for (int i = 0; i < kWorkers; ++i) workers.emplace_back(shell, i);
  const auto end = steady_clock::now() + kStorm;
  std::atomic<int> failures = 0;
  std::vector<std::jthread> threads;
  for (auto& each : workers) {
    threads.emplace_back([&each, &failures, end] {
      try {
        each.workUntil(end);
      } catch (const std::exception& problem) {
        std::fprintf(stderr, "%s\n", problem.what());
        ++failures;
      }
    });
  }
  while (steady_clock::now() < end) {
    QuorloProgram quorlo(desktop, QUORLO, QuorloProgram::Start::doesNotWait);
    std::this_thread::sleep_for(kLifeOfQuorlo);
    quorlo.process().signal(SIGKILL);
    quorlo.process().waitForEnd(kLongestCommand);
  }
  threads.clear();

  std::map<std::string, std::string> stored;
  for (const auto& [options, state] : {std::pair(std::vector<std::string>{}, "live "),
                                       std::pair(std::vector<std::string>{"--trash"}, "trashed ")}) {
    for (const auto& each : shell.list(options)) {
      if (each["abbreviation"].is_string())
        stored[each["abbreviation"]] = state + each["text"].get<std::string>();
    }
  }
  int lost = failures;
  int commands = 0;
  for (const auto& each : workers) {
    lost += each.lost(stored);
    commands += each.commands();
  }
  std::fprintf(stderr, "storm: %d commands, %zu snippets\n", commands, stored.size());
  return lost;
}

void measure(Figures& figures) {
  VirtualDesktop desktop;
  const Shell shell(desktop);
  figures.add("parallel_adds_duplicates", duplicatesOfParallelAdds(shell));
  figures.add("storm_lost", lostInAStorm(desktop, shell));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  return quorlo::runBenchmark(argc, argv, "writers", quorlo::measure);
}
