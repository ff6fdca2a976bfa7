#include "platform/api/command_runner.h"

#include <QProcess>

namespace platform {

CommandOutput ShellCommandRunner::runShellCommand(const QString& commandLine)
{
    CommandOutput output;
    QProcess process;
    process.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), commandLine});
    process.closeWriteChannel();
    output.started = process.waitForStarted();
    if (!output.started) {
        return output;
    }
    process.waitForFinished(-1);
    output.standardOutput = process.readAllStandardOutput();
    output.standardError = process.readAllStandardError();
    output.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return output;
}

} // namespace platform
