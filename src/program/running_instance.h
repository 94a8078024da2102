#pragma once

#include "base/result.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// The Quorlo that runs in this session, as another process sees it (application_service.h). Needs a
// QCoreApplication. Errors are in words for the user.
class RunningInstance {
 public:
  bool isThere() const;

  Status reopen() const;
  Status open(const std::vector<std::filesystem::path>& files) const;
  Status activateAction(std::string_view name) const;
  Result<std::string> status() const;
  // What keeps it from expanding at the moment: in turn a fact and what to do about it.
  Result<std::vector<std::string>> obstacles() const;

  // Asks it to quit and waits until it has; an error when it has not within about 10 s.
  Status quit() const;
};

// `quorlo menu`, `quit` and `status`: does it, prints what there is to say; the exit status.
int runInstanceCommand(std::string_view command, bool json);

}  // namespace quorlo
