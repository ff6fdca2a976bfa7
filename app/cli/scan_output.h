#pragma once

#include "scanning/results_table_model.h"
#include "scanning/wifi_scan_test.h"

#include <QString>

#include <cstdio>

class JsonWriter;

// What skyvane-cli scan prints after each scan: the count label and the test's rows, as an
// aligned table for people or as JSON Lines for programs.
namespace app::cli {

// The count label, then a heading and one line per row of the results table, in its order;
// "*" marks the connected network.
QString scanTable(const QString& countLabel, const scanning::ResultsTableModel& table);

// One object for the scan ({"scan", "countLabel", "testLabel", "activeBSSID"}), then one per
// row with the scan number and the record's fields under their own names.
void writeScanJson(JsonWriter& json, int scan, const QString& countLabel, const scanning::WiFiScanTest& test);

} // namespace app::cli
