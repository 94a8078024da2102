// quorlo-chaos [--minutes N] [--seed S] [--only NAME] [QUORLO]
//
// Types on virtual desktops while everything else on them changes, hangs and dies, and accounts for every
// character and expansion. Status 0 when nothing was lost and nothing wrong.
#include "chaos/chaos_run.h"

#include <exception>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

quorlo::ChaosOptions optionsOf(const std::vector<std::string>& words) {
  quorlo::ChaosOptions options{.program = QUORLO, .seed = std::random_device{}(), .only = {}};
  for (std::size_t i = 0; i < words.size(); ++i) {
    const auto value = [&] {
      if (++i == words.size()) throw std::invalid_argument(words.back() + " needs a value");
      return words[i];
    };
    if (words[i] == "--minutes") {
      options.time = std::chrono::seconds(static_cast<int>(60 * std::stod(value())));
    } else if (words[i] == "--seed") {
      options.seed = static_cast<std::uint32_t>(std::stoul(value()));
    } else if (words[i] == "--only") {
      options.only = value();
    } else if (words[i].starts_with("-")) {
      throw std::invalid_argument("usage: quorlo-chaos [--minutes N] [--seed S] [--only NAME] [QUORLO]");
    } else {
      options.program = words[i];
    }
  }
  return options;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const auto options = optionsOf({argv + 1, argv + argc});
    std::cout << "seed " << options.seed << std::endl;
    const auto outcome = quorlo::runChaos(options, std::cout);
    std::cout << "seed " << options.seed << ": " << outcome.rounds << " rounds, " << outcome.disturbances
              << " disturbances; lost " << outcome.faults.lost << ", wrong " << outcome.faults.wrong
              << ", keyboard dead for at most " << outcome.longestDeadTime.count() << " ms" << std::endl;
    return outcome.faults.sum() == 0 ? 0 : 1;
  } catch (const std::exception& problem) {
    std::cerr << "quorlo-chaos: " << problem.what() << "\n";
    return 2;
  }
}
