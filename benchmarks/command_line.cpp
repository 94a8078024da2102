// How long a command takes as a whole process, over a library of 10,000 snippets: `quorlo expand` with the
// library and the program in the system's cache, from before the process is made until it has ended.
//
// quorlo_command_line_bench [--figures FILE]; the program is the one of the same build.

#include "benchmark_library.h"
#include "figures.h"
#include "run_benchmark.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace quorlo {
namespace {

using std::chrono::steady_clock;

constexpr int kSnippets = 10'000;
constexpr int kRuns = 101;

// A home without anything in it, in the environment of this process.
class Home {
 public:
  Home() {
    std::string name = "/tmp/quorlo-bench-XXXXXX";
    if (!::mkdtemp(name.data())) throw std::runtime_error("No folder can be made in /tmp.");
    path_ = name;
    ::setenv("HOME", name.c_str(), 1);
    for (const auto* each : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "DISPLAY"}) ::unsetenv(each);
  }
  Home(const Home&) = delete;
  Home& operator=(const Home&) = delete;
  ~Home() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// What the command prints. The shell hands over to the program: it is not in the figure but for its start.
std::string outputOf(const std::string& arguments) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(
      ::popen(("exec " QUORLO " " + arguments).c_str(), "r"), ::pclose);
  std::string output;
  std::array<char, 4096> block{};
  while (const auto count = std::fread(block.data(), 1, block.size(), pipe.get()))
    output.append(block.data(), count);
  return output;
}

double millisecondsToExpand() {
  const auto start = steady_clock::now();
  const auto output = outputOf("expand sig");
  const auto end = steady_clock::now();
  if (output != "Kind regards") throw std::runtime_error("quorlo expand sig printed: " + output);
  return std::chrono::duration<double, std::milli>(end - start).count();
}

void measure(Figures& figures) {
  const Home home;
  const auto document = home.path() / "library.json";
  std::ofstream(document) << benchmarkLibrary(kSnippets);
  outputOf(fmt::format("import {}", document.string()));
  std::vector<double> samples;
  for (int i = 0; i < kRuns; ++i) samples.push_back(millisecondsToExpand());
  figures.add("cli_expand_ms", percentile(samples, 0.5));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  return quorlo::runBenchmark(argc, argv, "command line", quorlo::measure);
}
