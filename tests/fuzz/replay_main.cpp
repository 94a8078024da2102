// Calls a fuzz target without libFuzzer: with every seed file of a folder, cut at each length, and with
// random mixtures of them.

#include "fuzz/fuzz_target.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace {

constexpr int kMixtures = 20'000;

void call(const std::string& input) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

std::vector<std::string> readSeeds(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files(std::filesystem::directory_iterator(folder), {});
  std::ranges::sort(files);
  std::vector<std::string> seeds;
  for (const auto& file : files) {
    std::ifstream in(file, std::ios::binary);
    seeds.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  return seeds;
}

std::string mixture(const std::vector<std::string>& seeds, std::mt19937& random) {
  const auto below = [&](std::size_t bound) { return bound == 0 ? 0 : random() % bound; };
  std::string input;
  for (auto parts = 1 + below(6); parts > 0; --parts) {
    const auto& seed = seeds[below(seeds.size())];
    input += seed.substr(below(seed.size()), below(60));
    if (below(4) == 0) input += static_cast<char>(random());
  }
  return input;
}

}  // namespace

// The only argument is the folder of the seeds.
int main(int, char** argv) {
  const auto seeds = readSeeds(argv[1]);
  quorlo::require(!seeds.empty());
  for (const auto& seed : seeds) {
    for (std::size_t length = 0; length <= seed.size(); ++length) call(seed.substr(0, length));
  }
  std::mt19937 random(1);
  for (int i = 0; i < kMixtures; ++i) call(mixture(seeds, random));
}
