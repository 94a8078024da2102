#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quorlo {

struct Alert {
  std::u16string message;
  std::u16string informativeText;
  std::vector<std::u16string> buttons;  // the first is the default
};

// Modal alerts. Main thread.
class Alerts {
 public:
  virtual ~Alerts() = default;

  // Shows the alert and waits; the index of the button chosen. Closing it otherwise counts as the last
  // button. The main queue goes on meanwhile.
  virtual std::size_t runModal(const Alert& alert) = 0;
};

}  // namespace quorlo
