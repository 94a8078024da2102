#pragma once

namespace quorlo {

class CommandSession;
struct ImportReport;

// Prints what an import did or would do: the counts to standard output, for a dry run with the first snippets
// as they would be; what could not be kept as it was to standard error. As JSON where that is asked for.
void printImport(CommandSession& session, const ImportReport& report);

}  // namespace quorlo
