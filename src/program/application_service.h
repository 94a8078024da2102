#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QObject;

namespace quorlo {

inline constexpr const char* kServiceName = "org.quorlo.Quorlo";
inline constexpr const char* kServicePath = "/org/quorlo/Quorlo";

// What other processes may ask of the running Quorlo. Called on the main thread, one at a time.
struct ApplicationRequests {
  std::function<void()> reopen;
  std::function<void(const std::vector<std::filesystem::path>& files)> open;
  std::function<void()> showMenu;
  std::function<void()> showEditor;
  std::function<void()> showSettings;
  std::function<void()> quit;
  std::function<std::string()> status;  // for people, several lines
  // What keeps it from expanding at the moment: in turn a fact and what to do about it.
  std::function<std::vector<std::string>()> obstacles;
};

// Answers on the session bus as org.quorlo.Quorlo: the interface org.freedesktop.Application (Desktop Entry,
// D-Bus Activation; actions "menu", "editor", "settings" and "quit") and one of its own with Status. Needs
// the QCoreApplication. Without a bus, or when another process has the name, nobody asks; that is logged.
class ApplicationService {
 public:
  explicit ApplicationService(ApplicationRequests requests);
  ~ApplicationService();

 private:
  std::unique_ptr<QObject> object_;
};

}  // namespace quorlo
