#include "app/cli/report_command.h"

#include "cli_run.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace {

TEST(ReportCommand, WatchesTheSimulatedConnectionAndWritesPageAndGraph)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const CliRun run = runCli({"--simulate", "report", dir.filePath("mine.html"), "--duration", "2"});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    ASSERT_EQ(run.lines.size(), 1);
    const QString page = QString::fromUtf8(run.lines.first());
    EXPECT_TRUE(page.endsWith("/mine.html"));
    QFile html(page);
    ASSERT_TRUE(html.open(QIODevice::ReadOnly));
    const QByteArray text = html.readAll();
    EXPECT_TRUE(text.contains("Skyvane Home"));
    EXPECT_TRUE(text.contains("skv-images/connectedSSIDgraph.png"));
    EXPECT_GT(QFileInfo(QFileInfo(page).path() + "/skv-images/connectedSSIDgraph.png").size(), 1000);
}

TEST(ReportCommand, ArgumentsAndFailuresAreReported)
{
    QString error;
    EXPECT_FALSE(app::cli::parseReportArguments({"report"}, &error));
    EXPECT_EQ(error, "report needs the file to write");
    EXPECT_FALSE(app::cli::parseReportArguments({"report", "x.html", "--duration", "0"}, &error));
    const auto request = app::cli::parseReportArguments({"--simulate", "report", "x.html", "--duration=30"}, &error);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->durationSeconds, 30);
    EXPECT_TRUE(request->backend.simulate);

    const CliRun refused = runCli({"--simulate", "report", "/proc/none/x.html", "--duration", "1"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains("could not be created"));
}

} // namespace
