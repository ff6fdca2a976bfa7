#pragma once

#include "app/backend/backend_chooser.h"
#include "core/user_settings.h"
#include "scanning/exporter.h"
#include "scanning/filter_criteria.h"

#include <QString>
#include <QStringList>

#include <cstdio>
#include <optional>

// skyvane-cli scan: the scanner tab without a window. Runs one scan test on the chosen backend,
// prints the count label and the rows after every scan, and can export the test at the end.
namespace app::cli {

struct ScanRequest {
    app::BackendOptions backend;
    int intervalSeconds = 5;
    std::optional<int> count;            // scans to show; with neither limit, until stopped
    std::optional<int> durationSeconds;
    bool merge = false;
    scanning::FilterCriteria filter;               // applied: filter.filterCriteria holds the condition
    QString databasePath;                // empty: the normal database location
    bool json = false;
    std::optional<scanning::ScanExporter::Kind> exportKind;
    QString exportFile;
};

// nullopt with *error naming the offending argument when the arguments form no scan request.
std::optional<ScanRequest> parseScanArguments(const QStringList& arguments, QString* error);

QString scanUsage();

// Exit status 0; 1 when the backend or the database could not be set up or failed during the
// run, when a scan failed, or when the export failed.
int runScan(const ScanRequest& request, core::UserSettings& settings, std::FILE* out, std::FILE* err);

} // namespace app::cli
