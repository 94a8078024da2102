#pragma once

#include <string>
#include <string_view>

namespace quorlo {

// What the program shows of its version. A beta says what it is.
class QuorloApp {
 public:
  explicit QuorloApp(std::string_view shortVersion);

  const std::u16string& badge() const { return badge_; }              // "BETA" or empty
  const std::u16string& versionText() const { return versionText_; }  // "Version 3.1 beta" or empty

  // For the status item: "Quorlo", or "Quorlo BETA (Version 3.1 beta)".
  std::u16string toolTip() const;

 private:
  std::u16string badge_;
  std::u16string versionText_;
};

}  // namespace quorlo
