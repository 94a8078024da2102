#include "base/recent_log_tags.h"

#include <algorithm>

namespace quorlo {
namespace {

// Of a warning or an error only: other lines may quote the user's own "#".
std::string_view tagOf(std::string_view line) {
  if (!line.starts_with("ERROR") && !line.starts_with("WARNING")) return {};
  const auto start = line.find('#');
  if (start == std::string_view::npos ||
      line.substr(0, start).find_first_not_of("ERRORWARNING: ") != std::string_view::npos) {
    return {};
  }
  const auto end = line.find_first_of(" ;:", start);
  return line.substr(start, std::min(end, line.size()) - start);
}

}  // namespace

void RecentLogTags::note(std::string_view line) {
  const auto tag = tagOf(line).substr(0, kLongest);
  if (tag.empty()) return;
  auto& place = tags_[noted_ % kCount];
  *std::ranges::copy(tag, place).out = '\0';
  ++noted_;
}

std::string_view RecentLogTags::tag(std::size_t age) const {
  if (age >= std::min(noted_, kCount)) return {};
  return tags_[(noted_ - 1 - age) % kCount];
}

}  // namespace quorlo
