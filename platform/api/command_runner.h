#pragma once

#include <QByteArray>
#include <QString>

// Runs the platform's command-line tool through "/bin/sh" "-c", as the scanner and the interface
// tab do, and hands back both output streams. Injectable so tests need no real process.
namespace platform {

struct CommandOutput {
    QByteArray standardOutput;
    QByteArray standardError;
    int exitCode = -1;
    bool started = false;
};

class CommandRunner {
public:
    virtual ~CommandRunner() = default;
    virtual CommandOutput runShellCommand(const QString& commandLine) = 0;
};

// The real one: QProcess with "/bin/sh" "-c" commandLine, every stream on a pipe.
class ShellCommandRunner : public CommandRunner {
public:
    CommandOutput runShellCommand(const QString& commandLine) override;
};

} // namespace platform
