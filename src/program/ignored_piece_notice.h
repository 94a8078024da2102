#pragma once

#include <functional>
#include <string>

namespace quorlo {

class UserDefaults;
class UserNotifications;

// Tells the user that an application did not take what was pasted into it, once for each application, and
// offers to choose another way for it. Main thread.
class IgnoredPieceNotice {
 public:
  // `chooseWay` is called with the application when the user accepts the offer. The references must outlive
  // the notice.
  IgnoredPieceNotice(UserDefaults& defaults, UserNotifications& notifications,
                     std::function<void(const std::string& application)> chooseWay);

  // `application` is its desktop-file identifier or window class, `name` what the user calls it.
  void tell(const std::string& application, const std::string& name);

 private:
  bool isNew(const std::string& application);

  UserDefaults& defaults_;
  UserNotifications& notifications_;
};

}  // namespace quorlo
