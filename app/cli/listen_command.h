#pragma once

#include "app/backend/backend_chooser.h"
#include "core/user_settings.h"

#include <QString>
#include <QStringList>

#include <cstdio>
#include <optional>

// skyvane-cli listen: the sensor listener and its log without a desktop (a computer in a car),
// joining each GPS reading with the link of the chosen backend's interface.
namespace app::cli {

struct ListenRequest {
    app::BackendOptions backend;
    bool tcp = false;
    int port = 0;             // 0: any free port, named in the status line
    QString logDir;           // empty: the folder the settings name
    std::optional<int> saveIntervalSeconds;  // the settings' period when absent
};

// The whole argument list, backend options included; nullopt with *error naming what is wrong.
std::optional<ListenRequest> parseListenArguments(const QStringList& arguments, QString* error);
QString listenUsage();

// Runs until SIGHUP, SIGINT or SIGTERM, saves the log and returns 0; 1 when the backend or the
// listener cannot start, when out fails (it then stops, saving first) or when lines of the log
// were never saved. Log lines go to out, status lines and console messages to err.
int runListen(const ListenRequest& request, core::UserSettings& settings, std::FILE* out, std::FILE* err);

} // namespace app::cli
