#include "program/command_line.h"
#include "program/doctor/session_facts.h"
#include "program/lost_display_notice.h"
#include "program/program.h"
#include "program/running_instance.h"
#include "program/settings_command.h"
#include "program/termination_signals.h"
#include "x11/x_connection.h"

#include <QApplication>

#include <iostream>
#include <variant>

namespace {

int complain(const quorlo::Error& error) {
  std::cerr << "quorlo: " << error.message << "\n";
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace quorlo;
  const auto parsed = parseCommandLine(argc, argv);
  if (const auto* exit = std::get_if<CommandLineExit>(&parsed)) return exit->status;
  const auto& commandLine = std::get<CommandLine>(parsed);

  if (!commandLine.command.empty()) {
    const QCoreApplication application(argc, argv);
    return commandLine.command == "doctor" ? runDoctor() : runInstanceCommand(commandLine.command);
  }
  if (commandLine.onlyChangesSettings()) {
    const QCoreApplication application(argc, argv);
    return switchAbbreviations(*commandLine.abbreviations);
  }

  // Qt ends the process without a word of ours where it finds no display.
  if (const auto display = XConnection::open(""); !display) return complain(display.error());

  blockTerminationSignals();
  QApplication::setDesktopFileName(QStringLiteral("org.quorlo.Quorlo"));
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  const TerminationSignals signals([] { QCoreApplication::quit(); });

  const auto program = Program::start(
      {commandLine.library, commandLine.abbreviations, [](int status) { QCoreApplication::exit(status); }});
  if (!program) return complain(program.error());
  sayWhenTheDisplayIsLost();
  const int status = QCoreApplication::exec();
  theEventLoopHasEnded();
  return status;
}
