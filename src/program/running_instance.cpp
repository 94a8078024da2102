#include "program/running_instance.h"

#include "program/application_service.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QStringList>
#include <QUrl>
#include <QVariant>

#include <nlohmann/json.hpp>

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <iostream>
#include <optional>

namespace quorlo {
namespace {

constexpr const char* kApplicationInterface = "org.freedesktop.Application";
constexpr int kAnswerMilliseconds = 5000;
constexpr int kLongestFarewellMilliseconds = 10'000;

Result<QDBusMessage> call(const char* interface, const char* method, const QVariantList& arguments) {
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    return Error{
        "There is no session bus, by which the running Quorlo is reached. Run this command in the desktop "
        "session, or see that DBUS_SESSION_BUS_ADDRESS is set."};
  }
  if (!RunningInstance().isThere()) return Error{"Quorlo is not running. Start it with: quorlo"};
  auto message = QDBusMessage::createMethodCall(QLatin1String(kServiceName), QLatin1String(kServicePath),
                                                QLatin1String(interface), QLatin1String(method));
  message.setArguments(arguments);
  const auto answer = bus.call(message, QDBus::Block, kAnswerMilliseconds);
  if (answer.type() != QDBusMessage::ReplyMessage) {
    return Error{"The running Quorlo does not answer: " + answer.errorMessage().toStdString()};
  }
  return answer;
}

// A descriptor that can be read from once the process has ended; absent when it is not there any more.
std::optional<int> processOfInstance() {
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return std::nullopt;
  const auto id = bus.interface()->servicePid(QLatin1String(kServiceName));
  if (!id.isValid()) return std::nullopt;
  const auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, static_cast<pid_t>(id.value()), 0));
  return descriptor < 0 ? std::nullopt : std::optional(descriptor);
}

Status statusOf(const Result<QDBusMessage>& answer) {
  return answer ? Status() : Status(answer.error());
}

int printStatus(const Result<std::string>& status, bool json) {
  const auto& text = status ? status.value() : status.error().message;
  if (json) {
    std::cout << nlohmann::ordered_json{{"isRunning", status.ok()}, {"text", text}}.dump(
                     2, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
              << "\n";
  } else if (status) {
    std::cout << text;
  } else {
    std::cerr << "quorlo: " << text << "\n";
  }
  return status ? 0 : 1;
}

}  // namespace

bool RunningInstance::isThere() const {
  const auto bus = QDBusConnection::sessionBus();
  return bus.isConnected() && bus.interface()->isServiceRegistered(QLatin1String(kServiceName)).value();
}

Status RunningInstance::reopen() const {
  return statusOf(call(kApplicationInterface, "Activate", {QVariantMap()}));
}

Status RunningInstance::open(const std::vector<std::filesystem::path>& files) const {
  QStringList addresses;
  for (const auto& each : files) {
    const auto path = QString::fromStdString(std::filesystem::absolute(each).string());
    addresses.append(QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded));
  }
  return statusOf(call(kApplicationInterface, "Open", {addresses, QVariantMap()}));
}

Status RunningInstance::activateAction(std::string_view name) const {
  const auto action = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  return statusOf(call(kApplicationInterface, "ActivateAction", {action, QVariantList(), QVariantMap()}));
}

Result<std::string> RunningInstance::status() const {
  const auto answer = call(kServiceName, "Status", {});
  if (!answer) return answer.error();
  return answer.value().arguments().value(0).toString().toStdString();
}

Result<std::vector<std::string>> RunningInstance::obstacles() const {
  const auto answer = call(kServiceName, "Obstacles", {});
  if (!answer) return answer.error();
  std::vector<std::string> list;
  for (const auto& each : answer.value().arguments().value(0).toStringList())
    list.push_back(each.toStdString());
  return list;
}

// Waits for the end of the process, not of its service: only then its place is free for another one.
Status RunningInstance::quit() const {
  const auto process = processOfInstance();
  if (auto asked = activateAction("quit"); !asked) return asked;
  if (!process) return {};
  pollfd end{*process, POLLIN, 0};
  const int ended = poll(&end, 1, kLongestFarewellMilliseconds);
  close(*process);
  if (ended <= 0) return Error{"Quorlo has not quit. It may be asking a question on the screen."};
  return {};
}

int runInstanceCommand(std::string_view command, bool json) {
  const RunningInstance instance;
  if (command == "status") return printStatus(instance.status(), json);
  const auto done = command == "quit" ? instance.quit() : instance.activateAction(command);
  if (!done) std::cerr << "quorlo: " << done.error().message << "\n";
  return done ? 0 : 1;
}

}  // namespace quorlo
