#pragma once

#include "app/shell/app_windows.h"

#include <set>
#include <string>

namespace quorlo {

class FakeAppWindows : public AppWindows {
 public:
  void openWindow(std::string_view identifier) override { visible.emplace(identifier); }
  bool isWindowVisible(std::string_view identifier) const override { return visible.contains(identifier); }
  void closeSheets() override { sheetIsOpen = false; }
  bool commitEditing() override { return canCommitEditing; }

  std::set<std::string, std::less<>> visible;
  bool sheetIsOpen = false;
  bool canCommitEditing = true;
};

}  // namespace quorlo
