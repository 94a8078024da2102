#include "cli/definition/command_parser.h"
#include "cli/error_text.h"
#include "program/command_run.h"
#include "program/doctor/session_facts.h"
#include "program/lost_display_notice.h"
#include "program/program.h"
#include "program/running_instance.h"
#include "program/settings_command.h"
#include "program/termination_signals.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"
#include "x11/connection/x_connection.h"

#include <QApplication>
#include <QMessageBox>
#include <QSessionManager>

#include <iostream>
#include <string>
#include <variant>

namespace {

int complain(const quorlo::Error& error) {
  std::cerr << "quorlo: " << error.message << "\n";
  return 1;
}

void showFailure(const quorlo::Error& error) {
  QMessageBox box(QMessageBox::Critical, QStringLiteral("Quorlo"),
                  quorlo::localizedText(u"Quorlo cannot start."));
  box.setInformativeText(QString::fromStdString(quorlo::inWords(error.message)));
  box.exec();
}

// The session ends for everybody unless the user wants to keep changes that cannot be saved.
void endWithTheSession(const QApplication& application, quorlo::Program& program) {
  QObject::connect(&application, &QGuiApplication::commitDataRequest, &application,
                   [&program](QSessionManager& session) {
                     const bool mayAsk = session.allowsInteraction();
                     if (mayAsk && !program.mayEnd()) session.cancel();
                     if (mayAsk) session.release();
                   });
}

}  // namespace

int main(int argc, char** argv) {
  using namespace quorlo;
  CommandParser parser;
  const auto parsed = parser.parse(argc, argv);
  if (const auto* exit = std::get_if<CommandLineExit>(&parsed)) return static_cast<int>(exit->status);
  if (const auto* command = std::get_if<CommandRequest>(&parsed)) return runCommand(*command);
  if (const auto* request = std::get_if<ProgramRequest>(&parsed)) {
    const QCoreApplication application(argc, argv);
    return request->command == "doctor" ? runDoctor(request->json)
                                        : runInstanceCommand(request->command, request->json);
  }
  const auto& start = std::get<StartRequest>(parsed);
  if (start.onlyChangesSettings()) {
    const QCoreApplication application(argc, argv);
    return switchAbbreviations(*start.abbreviations);
  }

  // Qt ends the process without a word of ours where it finds no display.
  if (const auto display = XConnection::open(""); !display) return complain(display.error());

  blockTerminationSignals();
  QApplication::setDesktopFileName(QStringLiteral("org.quorlo.Quorlo"));
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setWindowIcon(programIcon());
  Program* running = nullptr;
  const TerminationSignals signals(
      [&running] { running ? running->terminate() : QCoreApplication::exit(1); });

  const auto program = Program::start(
      {start.files, start.library, start.abbreviations, [](int status) { QCoreApplication::exit(status); }});
  if (!program) {
    const int status = complain(program.error());
    // Who names a library is at a command line and reads the answer there.
    if (!start.library) showFailure(program.error());
    return status;
  }
  running = program.value().get();
  if (running == nullptr) return 0;
  endWithTheSession(application, *running);
  sayWhenTheDisplayIsLost();
  const int status = QCoreApplication::exec();
  theEventLoopHasEnded();
  return status;
}
