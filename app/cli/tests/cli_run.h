#pragma once

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QStringList>

#include <gtest/gtest.h>

// Runs the built skyvane-cli the way a user would and keeps what it printed.
struct CliRun {
    int exitCode = -1;
    QList<QByteArray> lines;  // standard output, without the empty piece after the last line break
    QByteArray err;
};

inline CliRun runCli(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(SKYVANE_BINARY_DIR "/app/cli/skyvane-cli"), arguments);
    EXPECT_TRUE(process.waitForFinished(60000));
    CliRun run{process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
               process.readAllStandardOutput().split('\n'), process.readAllStandardError()};
    if (!run.lines.isEmpty() && run.lines.last().isEmpty())
        run.lines.removeLast();
    return run;
}
