#pragma once

#include "app/backend/backend_chooser.h"

#include <QString>
#include <QStringList>

#include <cstdio>
#include <optional>

// skyvane-cli [BACKEND] report FILE [--duration SECONDS]: watches the current connection once a
// second for the given time and writes the connected-network report, graph image included.
namespace app::cli {

struct ReportRequest {
    app::BackendOptions backend;
    QString path;
    int durationSeconds = 10;
};

std::optional<ReportRequest> parseReportArguments(const QStringList& arguments, QString* error);
QString reportUsage();
// 0 when the report was written; 1 when the backend or the files failed.
int runReport(const ReportRequest& request, std::FILE* out, std::FILE* err);

} // namespace app::cli
