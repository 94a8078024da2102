#pragma once

#include <QWidget>

#include <string_view>

namespace quorlo {

class Workspace;

// The program's version and licence, and those of the libraries it is made with.
class AboutWindow : public QWidget {
 public:
  // Links are opened by the workspace, which must outlive the window.
  AboutWindow(Workspace& workspace, std::string_view version);

  // Shows the window in front of others.
  void present();
};

}  // namespace quorlo
