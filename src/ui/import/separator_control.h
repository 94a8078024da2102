#pragma once

#include <QWidget>

#include <cstddef>
#include <functional>

class QButtonGroup;

namespace quorlo {

// The separators of tables side by side in the order of kSeparators, one of them chosen.
class SeparatorControl final : public QWidget {
 public:
  // `chosen` is called with the segment that the user chooses.
  explicit SeparatorControl(const std::function<void(std::size_t)>& chosen);

  void setSegment(std::size_t segment);

 private:
  QButtonGroup* segments_;
};

}  // namespace quorlo
