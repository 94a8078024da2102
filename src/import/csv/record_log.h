#pragma once

namespace quorlo {

class WorkProgress;
struct CsvColumns;
struct ImportData;

// What debug mode writes into the log of the import of a table: the chosen columns, and the records with the
// texts that the user has in them.
void logColumns(const CsvColumns& columns);
void logRecords(const ImportData& records, const CsvColumns& columns, const WorkProgress& progress);

}  // namespace quorlo
