#pragma once

#include "app/backend/backend_chooser.h"

#include <QString>
#include <QStringList>

// The skyvane program's command line: the backend options it shares with skyvane-cli, the
// database path, --help and --version.
namespace app::desktop {

struct DesktopArguments {
    enum class Action { Run, ShowHelp, ShowVersion, Fail };
    Action action = Action::Run;
    app::BackendOptions backend;
    QString databasePath;  // empty: the desktop's own database
    bool explain = false;  // the interface tab names each value's source
    // The help or version text to print, or why the arguments were refused.
    QString message;
};

// arguments without the program name.
DesktopArguments parseDesktopArguments(const QStringList& arguments);
QString desktopHelpText();

} // namespace app::desktop
