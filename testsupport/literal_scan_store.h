#pragma once

#include "scanning/scan_database.h"

namespace testsupport {

// The scan store as its statements read when taken one at a time: every statement compiled from
// its text, every one its own transaction, no indexes. It is the yardstick that the batched
// ScanDatabase::storeScan is checked against (same rows, same logs) and timed against.
namespace literal_scan_store {

void storeScan(scanning::ScanDatabase& database, const QList<scanning::ObservationRow>& rows, bool merge);
// Removes the indexes the database adds for the batched store.
void dropIndexes(scanning::ScanDatabase& database);

} // namespace literal_scan_store

} // namespace testsupport
