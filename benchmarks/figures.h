#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorlo {

// The figures of one benchmark program: printed as they come, and written as a JSON object from name to
// number where the program is called with --figures FILE.
class Figures {
 public:
  Figures(int argc, char** argv) {
    for (int i = 1; i + 1 < argc; ++i) {
      if (std::string_view(argv[i]) == "--figures") file_ = argv[i + 1];
    }
  }
  Figures(const Figures&) = delete;
  Figures& operator=(const Figures&) = delete;

  ~Figures() {
    if (file_.empty()) return;
    std::ofstream out(file_);
    const char* separator = "{\n";
    for (const auto& [name, value] : values_) {
      out << std::exchange(separator, ",\n") << "  \"" << name << "\": " << value;
    }
    out << "\n}\n";
  }

  void add(const std::string& name, double value) {
    std::printf("%-28s %12.3f\n", name.c_str(), value);
    std::fflush(stdout);
    values_[name] = value;
  }

 private:
  std::string file_;
  std::map<std::string, double> values_;
};

// The value that `share` (0 to 1) of the samples do not exceed. There must be a sample.
inline double percentile(std::vector<double> samples, double share) {
  const auto index = static_cast<std::size_t>(share * static_cast<double>(samples.size() - 1));
  std::nth_element(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(index), samples.end());
  return samples[index];
}

}  // namespace quorlo
