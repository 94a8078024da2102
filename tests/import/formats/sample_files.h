#pragma once

#include <fstream>
#include <iterator>
#include <string>

namespace quorlo {

// One of the files that samples/make_samples.py has written.
inline std::string sampleFile(const std::string& name) {
  std::ifstream in(QUORLO_SAMPLES "/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace quorlo
