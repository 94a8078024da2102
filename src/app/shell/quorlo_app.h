#pragma once

#include <string>
#include <string_view>

namespace quorlo {

// What the program shows of its version. A beta says what it is: on its badge, and wherever the version is
// told.
class QuorloApp {
 public:
  explicit QuorloApp(std::string_view shortVersion);

  const std::u16string& badge() const { return badge_; }              // "BETA" or empty
  const std::u16string& versionText() const { return versionText_; }  // "Version 3.1 beta" or empty

 private:
  std::u16string badge_;
  std::u16string versionText_;
};

}  // namespace quorlo
