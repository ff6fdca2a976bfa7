#pragma once

#include "app/backend/backend_chooser.h"

#include <QString>
#include <QStringList>

#include <cstdio>
#include <optional>

// skyvane-cli monitor: the monitor window without a window. Follows one access point by BSSID,
// prints its signal, noise and SNR after every rescan and, with --beep, beeps faster as the
// signal grows stronger, so a person can walk towards it with the lid half closed.
namespace app::cli {

struct MonitorRequest {
    app::BackendOptions backend;
    QString bssid;
    int intervalSeconds = 5;
    bool beep = false;
    std::optional<int> count;  // rescans to show; until stopped when absent
};

// nullopt with *error naming the offending argument when the arguments form no request.
std::optional<MonitorRequest> parseMonitorArguments(const QStringList& arguments, QString* error);

QString monitorUsage();

// Exit status 0; 1 when the backend cannot be opened, the access point is not in range at the
// start, or a rescan failed.
int runMonitor(const MonitorRequest& request, std::FILE* out, std::FILE* err);

} // namespace app::cli
