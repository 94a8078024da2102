#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// One application with windows on the desktop, as it was when the workspace was asked. Immutable.
struct RunningApplication {
  std::int64_t processIdentifier = 0;
  std::string localizedName;
  // The desktop-file identifier, for example "org.gnome.TextEditor"; absent when nothing names it.
  std::optional<std::string> bundleIdentifier;
  bool isActive = false;
};

// One that the user could start, with windows or without.
struct InstalledApplication {
  std::string bundleIdentifier;  // as RunningApplication has it while the application runs
  std::string localizedName;
  std::string iconName;  // of the desktop's icon theme, or a file; may be empty
};

using RunningApplications = std::vector<std::shared_ptr<const RunningApplication>>;

// The applications of the session. Main thread.
class Workspace {
 public:
  virtual ~Workspace() = default;

  // In the order the system gives. The list is kept current by the adapter, so that asking costs no round
  // trip; the reference holds until the next turn of the main queue.
  virtual const RunningApplications& runningApplications() const = 0;

  // Those that the desktop offers to its user, in no order. Reads the disk.
  virtual std::vector<InstalledApplication> installedApplications() const = 0;

  virtual const std::string& ownBundleIdentifier() const = 0;

  // Opens the address in the program the desktop has for it. False if it is not a valid address or
  // nothing opens it.
  virtual bool openURL(std::string_view url) = 0;
};

}  // namespace quorlo
