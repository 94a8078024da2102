#pragma once

namespace quorlo {

class CommandParser;

// One function for each command, in the order in which help, man page and completion list them.
void addListCommand(CommandParser& parser);
void addSearchCommand(CommandParser& parser);
void addShowCommand(CommandParser& parser);
void addExpandCommand(CommandParser& parser);
void addAddCommand(CommandParser& parser);
void addEditCommand(CommandParser& parser);
void addRemoveCommand(CommandParser& parser);
void addRestoreCommand(CommandParser& parser);
void addStatsCommand(CommandParser& parser);
void addImportCommand(CommandParser& parser);
void addExportCommand(CommandParser& parser);
void addBackupCommand(CommandParser& parser);
void addRepairCommand(CommandParser& parser);
void addSettingsCommands(CommandParser& parser);
void addProgramCommands(CommandParser& parser);
void addCompletionCommands(CommandParser& parser);
void addHelpCommand(CommandParser& parser);
void addManCommand(CommandParser& parser);

}  // namespace quorlo
