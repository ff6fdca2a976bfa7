#include "core/memory_settings.h"
#include "sensor/sensor_log.h"
#include "sensor/sensor_log_file.h"
#include "sensor/sensor_log_saver.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <atomic>
#include <tuple>
#include <thread>

using sensor::SensorLog;
using sensor::SensorLogFile;
using sensor::SensorLogSaver;

namespace {

const QString header = QString::fromLatin1(SensorLog::header);

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

// Inode and modification time: equal only if the file was neither replaced nor written.
std::tuple<ino_t, time_t, long> identity(const QString& path)
{
    struct stat info {};
    ::stat(QFile::encodeName(path).constData(), &info);
    return {info.st_ino, info.st_mtim.tv_sec, info.st_mtim.tv_nsec};
}

TEST(SensorLog, HeaderComesFirstAfterLaunchAndAfterEveryClearing)
{
    // "-" clears the log; every other step is written, the empty one included.
    struct Case {
        QStringList steps;
        QString expected;
    };
    const Case cases[] = {
        {{}, {}},
        {{QString()}, {}},
        {{"a"}, header + "a\n"},
        {{"a", "b", ""}, header + "a\nb\n"},
        {{"a", "-"}, {}},
        {{"a", "-", "-", "b", "c"}, header + "b\nc\n"},
    };
    for (const Case& c : cases) {
        SensorLog log;
        for (const QString& step : c.steps)
            step == u"-" ? log.clearListenerLogFiles() : log.writeLog(step);
        EXPECT_EQ(log.text(), c.expected) << c.steps.join(u'|').toStdString();
        EXPECT_EQ(log.shouldAddHeaderToLogFile(), c.expected.isEmpty());
    }
}

TEST(SensorLog, TextFromTheNetworkCannotSplitARow)
{
    SensorLog log;
    log.writeLog(QStringLiteral("a\nTIME,x\r\nb"));
    log.writeLog(QString::fromUtf8("nul\0end", 7));
    EXPECT_EQ(log.text(), header + "a\\nTIME,x\\r\\nb\nnul\\0end\n");
}

TEST(SensorLog, NewestLinesAreTheTailOfTheWholeLog)
{
    SensorLog log;
    for (const char* row : {"r1", "r2", "r3"})
        log.writeLog(QString::fromLatin1(row));
    EXPECT_EQ(log.newestLines(2), QStringList({"r2", "r3"}));
    EXPECT_EQ(log.newestLines(10), QStringList({header.trimmed(), "r1", "r2", "r3"}));
    EXPECT_TRUE(log.newestLines(0).isEmpty());
    EXPECT_TRUE(log.text().startsWith(header + "r1\n"));
}

class SensorLogFileTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    SensorLog log;
    SensorLogFile file{log, QStringLiteral("/skyvane_test.csv")};
    QString path() const { return dir.path() + QStringLiteral("/skyvane_test.csv"); }
    SensorLogFile::SaveReport save() { return file.appendToLogFile(dir.path()); }
};

TEST_F(SensorLogFileTest, SavesAppendOnlyTheNewLinesAndLeaveAnUnchangedFileAlone)
{
    log.writeLog(QStringLiteral("row one"));
    const auto created = save();
    EXPECT_EQ(created.console, QStringList{"creating file at path " + path()});
    EXPECT_EQ(contents(path()), log.text().toUtf8());

    const auto afterCreate = identity(path());
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_TRUE(save().console.isEmpty());
    EXPECT_EQ(identity(path()), afterCreate) << "a save with nothing new touched the file";

    log.writeLog(QStringLiteral("row two, ü"));
    log.writeLog(QStringLiteral("row three"));
    const QByteArray before = contents(path());
    const auto appended = save();
    EXPECT_TRUE(appended.console.isEmpty());
    EXPECT_TRUE(appended.status.isEmpty());
    EXPECT_EQ(contents(path()), before + QStringLiteral("row two, ü\nrow three\n").toUtf8());
    EXPECT_EQ(std::get<ino_t>(identity(path())), std::get<ino_t>(afterCreate)) << "an append replaced the file";
}

TEST_F(SensorLogFileTest, ClearingOrAForeignChangeRewritesTheFileByRenaming)
{
    log.writeLog(QStringLiteral("old"));
    save();
    const ino_t firstInode = std::get<ino_t>(identity(path()));

    log.clearListenerLogFiles();
    save();
    EXPECT_EQ(contents(path()), QByteArray());
    EXPECT_NE(std::get<ino_t>(identity(path())), firstInode);

    log.writeLog(QStringLiteral("new"));
    save();
    EXPECT_EQ(contents(path()), (header + "new\n").toUtf8());

    QFile tampered(path());
    ASSERT_TRUE(tampered.open(QIODevice::Append));
    tampered.write("partial li");
    tampered.close();
    log.writeLog(QStringLiteral("next"));
    save();
    EXPECT_EQ(contents(path()), log.text().toUtf8());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"skyvane_test.csv"}) << "temporary left behind";
}

TEST_F(SensorLogFileTest, FolderSettingFormsAndFailures)
{
    log.writeLog(QStringLiteral("r"));
    const QString folder = dir.path();
    struct Case {
        QVariant setting;
        QString expectedFolder;
    };
    const Case cases[] = {
        {QString("file://localhost" + folder + "/"), folder + "/"},
        {QUrl::fromLocalFile(folder + "/with space").toString(QUrl::FullyEncoded), folder + "/with space"},
        {QString(folder + "/plain"), folder + "/plain"},
        {QString(), QString()},
        {QVariant(), QString()},
    };
    for (const Case& c : cases)
        EXPECT_EQ(SensorLogFile::folderForSetting(c.setting), c.expectedFolder) << c.setting.toString().toStdString();

    ASSERT_TRUE(QDir(folder).mkpath("with space"));
    const auto viaUrl = file.appendToLogFile(cases[1].setting);
    EXPECT_EQ(contents(folder + "/with space/skyvane_test.csv"), log.text().toUtf8());
    EXPECT_TRUE(viaUrl.status.isEmpty());

    const auto none = file.appendToLogFile(QString());
    EXPECT_EQ(none.status, "Please select directory for log files");
    EXPECT_TRUE(none.console.isEmpty());

    // A regular file as the folder: not writable even for the superuser.
    const auto unwritable = file.appendToLogFile(folder + "/with space/skyvane_test.csv");
    EXPECT_EQ(unwritable.console,
              QStringList({"creating file at path " + folder + "/with space/skyvane_test.csv/skyvane_test.csv",
                           "unable to create file..."}));
    EXPECT_EQ(unwritable.status, "Unable to create log file " + folder +
                                     "/with space/skyvane_test.csv/skyvane_test.csv: Not a directory");
}

TEST_F(SensorLogFileTest, NeverWritesAFileItDidNotCreate)
{
    QFile foreign(path());
    ASSERT_TRUE(foreign.open(QIODevice::WriteOnly));
    foreign.write("another run's log\n");
    foreign.close();
    // A second listener of the same second in the same folder.
    SensorLog otherLog;
    SensorLogFile other(otherLog, QStringLiteral("/skyvane_test.csv"));
    otherLog.writeLog(QStringLiteral("theirs"));
    log.writeLog(QStringLiteral("mine"));

    EXPECT_EQ(save().console, QStringList{"creating file at path " + dir.path() + "/skyvane_test-2.csv"});
    EXPECT_TRUE(other.appendToLogFile(dir.path()).status.isEmpty());
    log.writeLog(QStringLiteral("mine again"));
    save();
    EXPECT_EQ(contents(path()), "another run's log\n");
    EXPECT_EQ(contents(dir.path() + "/skyvane_test-2.csv"), log.text().toUtf8());
    EXPECT_EQ(contents(dir.path() + "/skyvane_test-3.csv"), otherLog.text().toUtf8());
    EXPECT_EQ(file.savedPath(), dir.path() + "/skyvane_test-2.csv");
    EXPECT_EQ(file.unsavedBytes(), 0);
    log.writeLog(QStringLiteral("not yet saved"));
    EXPECT_EQ(file.unsavedBytes(), qsizetype(sizeof "not yet saved"));

    // A file of ours that someone removed is created again, still never over another's.
    QFile::remove(dir.path() + "/skyvane_test-2.csv");
    save();
    EXPECT_EQ(contents(dir.path() + "/skyvane_test-2.csv"), log.text().toUtf8());
    EXPECT_EQ(contents(path()), "another run's log\n");
}

TEST(SensorLogFileNames, OneNamePerLaunchAndSavePeriodFallback)
{
    // A twelve-hour clock and the week-based year: the last days of December can belong to the next one.
    EXPECT_EQ(SensorLogFile::logFileNameForLaunch(QDateTime(QDate(2024, 12, 30), QTime(0, 30, 5))),
              "/skyvane_12_30_2025_12_30_05.csv");
    EXPECT_EQ(SensorLogFile::numberedFileName("/skyvane_1.csv", 1), "/skyvane_1.csv");
    EXPECT_EQ(SensorLogFile::numberedFileName("/skyvane_1.csv", 12), "/skyvane_1-12.csv");

    const std::pair<QVariant, long long> periods[] = {
        {QVariant(), 5}, {QVariant(10), 10}, {QVariant("3"), 3}, {QVariant(2.7), 2},
        {QVariant("soon"), 5}, {QVariant(0), 5}, {QVariant(-4), 5},
        {QVariant(31536000), 31536000}, {QVariant(31536001), 5},
    };
    for (const auto& [setting, seconds] : periods)
        EXPECT_EQ(SensorLogFile::savePeriodForSetting(setting).count(), seconds) << setting.toString().toStdString();
}

TEST(SensorLogSaver, SavesOnItsOwnThreadUntilStopped)
{
    QTemporaryDir dir;
    SensorLog log;
    SensorLogFile file(log, QStringLiteral("/saver.csv"));
    core::MemorySettings settings;
    SensorLogSaver saver(file, settings);
    std::atomic<int> selectFolderStatuses = 0;
    QObject::connect(&saver, &SensorLogSaver::statusChanged, [&](const QString& text) {
        if (text == u"Please select directory for log files")
            ++selectFolderStatuses;
    });

    const auto waitFor = [](const auto& condition) {
        for (int i = 0; i < 400 && !condition(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return condition();
    };
    log.writeLog(QStringLiteral("first"));
    saver.start(std::chrono::milliseconds(20));
    EXPECT_TRUE(waitFor([&] { return selectFolderStatuses >= 2; }));
    EXPECT_FALSE(QFile::exists(dir.path() + "/saver.csv"));

    settings.setValue(QStringLiteral("udp_log_file_path"), dir.path());
    log.writeLog(QStringLiteral("second"));
    EXPECT_TRUE(waitFor([&] { return contents(dir.path() + "/saver.csv") == log.text().toUtf8(); }));

    saver.stop();
    EXPECT_FALSE(saver.isRunning());
    log.writeLog(QStringLiteral("after stop"));
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    EXPECT_NE(contents(dir.path() + "/saver.csv"), log.text().toUtf8());
    saver.appendToLogFile();
    EXPECT_EQ(contents(dir.path() + "/saver.csv"), log.text().toUtf8());
}

} // namespace
