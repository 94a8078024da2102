#pragma once

#include "app/shell/app_windows.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

class QWidget;

namespace quorlo {

// The program's windows, each made when it is first opened and kept until the end.
class QtAppWindows final : public AppWindows {
 public:
  using Maker = std::function<std::unique_ptr<QWidget>()>;

  QtAppWindows();
  ~QtAppWindows() override;

  // What opening the identifier makes; an identifier without a maker opens nothing.
  void setMaker(std::string_view identifier, Maker make);
  // Asked by commitEditing, once the window has been made.
  void setCommitEditing(std::string_view identifier, std::function<bool(QWidget&)> commit);

  // Null until it is first opened.
  QWidget* window(std::string_view identifier) const;

  // Before what the windows look at is gone.
  void destroyAll();

  void openWindow(std::string_view identifier) override;
  bool isWindowVisible(std::string_view identifier) const override;
  void closeSheets() override;
  bool commitEditing() override;

 private:
  struct Window {
    Maker make;
    std::function<bool(QWidget&)> commitEditing;
    std::unique_ptr<QWidget> widget;  // null until it is first opened
  };
  std::map<std::string, Window, std::less<>> windows_;
};

}  // namespace quorlo
