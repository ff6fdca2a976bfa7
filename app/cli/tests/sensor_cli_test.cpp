#include "app/cli/gpx_track.h"
#include "app/cli/phone_readings.h"
#include "cli_run.h"
#include "sensor/sensor_line.h"
#include "sensor/sensor_log_file.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QUdpSocket>

#include <arpa/inet.h>
#include <csignal>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>

namespace {

const QString cli = QStringLiteral(SKYVANE_BINARY_DIR "/app/cli/skyvane-cli");

std::optional<QList<app::cli::GpxPoint>> parseGpx(const QByteArray& text, QString* error)
{
    QBuffer buffer;
    buffer.setData(text);
    buffer.open(QIODevice::ReadOnly);
    return app::cli::readGpxTrack(buffer, error);
}

TEST(GpxTrack, ReadsTrackPointsAndNamesWhatIsWrong)
{
    QString error;
    const auto track = parseGpx(R"(<?xml version="1.0"?>
<gpx version="1.1" xmlns="http://www.topografix.com/GPX/1/1"><metadata><name>walk</name></metadata>
 <trk><trkseg>
  <trkpt lat="52.5" lon="13.4"><ele>34.5</ele><time>2024-05-01T10:00:00Z</time><extensions><hr>90</hr></extensions></trkpt>
  <trkpt lon="-0.1" lat="-51.25"/>
 </trkseg></trk></gpx>)",
                                &error);
    ASSERT_TRUE(track) << error.toStdString();
    ASSERT_EQ(track->size(), 2);
    EXPECT_DOUBLE_EQ((*track)[0].latitude, 52.5);
    EXPECT_DOUBLE_EQ((*track)[0].elevation, 34.5);
    EXPECT_EQ((*track)[0].time.toMSecsSinceEpoch(), 1714557600000);
    EXPECT_DOUBLE_EQ((*track)[1].longitude, -0.1);
    EXPECT_FALSE((*track)[1].time.isValid());

    const std::pair<const char*, const char*> bad[] = {
        {"", "not a GPX file"},
        {"not xml at all", "not a GPX file"},
        {"<kml><trkpt lat='1' lon='2'/></kml>", "not a GPX file"},
        {"<gpx><trk><trkseg></trkseg></trk></gpx>", "no track point"},
        {"<gpx><trkpt lon='2'/></gpx>", "needs lat"},
        {"<gpx><trkpt lat='91' lon='2'/></gpx>", "needs lat"},
        {"<gpx><trkpt lat='1' lon='2'><ele>high</ele></trkpt></gpx>", "elevation \"high\""},
        {"<gpx><trkpt lat='1' lon='2'><time>yesterday</time></trkpt></gpx>", "time \"yesterday\""},
        {"<gpx><trk><trkpt lat='1' lon='2'>", "line"},
    };
    for (const auto& [text, expected] : bad) {
        error.clear();
        EXPECT_FALSE(parseGpx(text, &error)) << text;
        EXPECT_TRUE(error.contains(QLatin1String(expected), Qt::CaseInsensitive)) << text << " -> " << error.toStdString();
    }
}

TEST(PhoneReadings, RoundsOfFourLinesThatTheListenerReads)
{
    app::cli::PhoneReadings walk;
    EXPECT_FALSE(walk.lineCount());
    const int expectedIds[] = {1, 2, 3, 4, 1, 2, 3, 4};
    const qsizetype expectedValues[] = {5, 2, 3, 3};
    for (int i = 0; i < 8; ++i) {
        const QByteArray line = walk.nextLine(1'714'557'600'123, 1.0);
        const auto parsed = sensor::parseSensorLine(QString::fromLatin1(line));
        ASSERT_TRUE(parsed) << line.constData();
        EXPECT_EQ(parsed->sensorId, expectedIds[i]);
        EXPECT_EQ(parsed->values.size(), expectedValues[i % 4]);
        EXPECT_EQ(parsed->date.toMSecsSinceEpoch(), 1'714'557'600'123);
    }

    app::cli::GpxPoint timed{10.0, 20.0, 5.0, QDateTime::fromMSecsSinceEpoch(1'000'000'000'000, Qt::UTC)};
    app::cli::PhoneReadings replay({timed, {10.001, 20.0, 6.0, {}}});
    EXPECT_EQ(replay.lineCount(), 8);
    EXPECT_EQ(replay.nextLine(5, 1.0), "1000000000000,1,10.0000000,20.0000000,5.0,5.0,8.0");
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(replay.nextLine(5, 1.0).startsWith("1000000000000,"));
    EXPECT_EQ(replay.nextLine(5, 1.0), "5,1,10.0010000,20.0000000,6.0,5.0,8.0");
    EXPECT_EQ(replay.nextLine(5, 1.0), "5,2,0.00,3.50") << "heading north along the track";
}

TEST(SensorSend, BadGpxOrAddressFailsClearly)
{
    QTemporaryDir dir;
    QFile gpx(dir.filePath("bad.gpx"));
    ASSERT_TRUE(gpx.open(QIODevice::WriteOnly));
    gpx.write("<gpx><trkpt lat='x' lon='1'/></gpx>");
    gpx.close();
    const std::pair<QStringList, int> runs[] = {
        {{"sensor-send", "--udp", "127.0.0.1:9", "--gpx", gpx.fileName()}, 1},
        {{"sensor-send", "--udp", "127.0.0.1:9", "--gpx", dir.filePath("missing.gpx")}, 1},
        {{"sensor-send", "--tcp", "127.0.0.1"}, 2},
        {{"sensor-send", "--udp", "127.0.0.1:9", "--rate", "0"}, 2},
    };
    for (const auto& [arguments, status] : runs) {
        QProcess process;
        process.start(cli, arguments);
        ASSERT_TRUE(process.waitForFinished(20000));
        EXPECT_EQ(process.exitCode(), status) << arguments.join(' ').toStdString();
        EXPECT_TRUE(process.readAllStandardError().startsWith("skyvane-cli: ")) << arguments.join(' ').toStdString();
    }
}

QByteArray contentsOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

// Reads what a running listener prints until a condition holds or time runs out.
bool waitFor(QProcess& process, QByteArray& out, QByteArray& err, const std::function<bool()>& condition)
{
    QElapsedTimer timer;
    timer.start();
    process.waitForStarted();
    while (!condition() && timer.elapsed() < 20000 && process.state() == QProcess::Running) {
        process.waitForReadyRead(100);
        out += process.readAllStandardOutput();
        err += process.readAllStandardError();
    }
    return condition();
}

TEST(SensorListenCommand, ListensLogsAndSavesWhatSensorSendPlays)
{
    for (const QString& transport : {QStringLiteral("--udp"), QStringLiteral("--tcp")}) {
        SCOPED_TRACE(transport.toStdString());
        QTemporaryDir logDir;
        QProcess listener;
        listener.start(cli, {"--simulate", "listen", transport, "0", "--log-dir", logDir.path(), "--save-interval", "60"});
        QByteArray out, err;
        const QRegularExpression started(QStringLiteral("listener started and bounded to port (\\d+)"));
        ASSERT_TRUE(waitFor(listener, out, err, [&] { return started.match(QString::fromUtf8(err)).hasMatch(); }))
            << err.constData();
        const QString port = started.match(QString::fromUtf8(err)).captured(1);

        QProcess sender;
        sender.start(cli, {"sensor-send", transport, "127.0.0.1:" + port, "--rate", "400", "--count", "40"});
        ASSERT_TRUE(sender.waitForFinished(20000));
        EXPECT_EQ(sender.exitCode(), 0) << sender.readAllStandardError().constData();
        EXPECT_EQ(sender.readAllStandardOutput(), "sent 40 lines to 127.0.0.1:" + port.toUtf8() + " over " +
                                                      transport.mid(2).toUpper().toUtf8() + "\n");

        ASSERT_TRUE(waitFor(listener, out, err, [&] { return out.count('\n') >= 11; })) << out.constData();
        listener.terminate();
        ASSERT_TRUE(listener.waitForFinished(10000));
        out += listener.readAllStandardOutput();
        err += listener.readAllStandardError();
        EXPECT_EQ(listener.exitCode(), 0) << err.constData();

        const QList<QByteArray> lines = out.trimmed().split('\n');
        ASSERT_EQ(lines.size(), 11) << out.constData();
        EXPECT_EQ(lines[0], "TIME,BSSID,SSID,RSSI,NOISE,CHANNEL,LATITUDE,LONGITUDE,ALTITUDE");
        const QRegularExpression row(QStringLiteral(
            "^\\d\\d-\\d\\d-\\d{4} \\d\\d:\\d\\d:\\d\\d,([0-9a-fA-F]{2}:){5}[0-9a-fA-F]{2},.*,-?\\d+,-?\\d+,\\d+,52\\.\\d{5},13\\.\\d{5},\\d+\\.\\d$"));
        for (qsizetype i = 1; i < lines.size(); ++i)
            EXPECT_TRUE(row.match(QString::fromUtf8(lines[i])).hasMatch()) << lines[i].constData();

        const QStringList files = QDir(logDir.path()).entryList({"skyvane_*.csv"}, QDir::Files);
        ASSERT_EQ(files.size(), 1) << err.constData();
        EXPECT_TRUE(QRegularExpression(QStringLiteral("^skyvane_\\d\\d_\\d\\d_\\d{4}_\\d\\d_\\d\\d_\\d\\d\\.csv$"))
                        .match(files[0])
                        .hasMatch());
        QFile saved(logDir.filePath(files[0]));
        ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
        EXPECT_EQ(saved.readAll(), out) << "the file is what the log showed";
    }
}

} // namespace

namespace {

// One skyvane-cli listen over UDP with its own HOME, so no user setting leaks in.
class ListenRun {
public:
    explicit ListenRun(const QStringList& extra, const std::function<void()>& childSetup = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), home.path());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral(".config")));
        process.setProcessEnvironment(environment);
        if (childSetup)
            process.setChildProcessModifier(childSetup);
        process.start(cli, QStringList{"--simulate", "listen", "--udp", "0", "--save-interval", "3600"} + extra);
        const QRegularExpression started(QStringLiteral("listener started and bounded to port (\\d+)"));
        if (waitFor(process, out, err, [&] { return started.match(QString::fromUtf8(err)).hasMatch(); }))
            port = static_cast<quint16>(started.match(QString::fromUtf8(err)).captured(1).toUInt());
    }

    void send(const QByteArray& datagram)
    {
        QUdpSocket sender;
        EXPECT_EQ(sender.writeDatagram(datagram, QHostAddress::LocalHost, port), datagram.size());
    }
    bool waitForLines(qsizetype lines)
    {
        return waitFor(process, out, err, [&] { return out.count('\n') >= lines; });
    }
    // Ends the run with a signal and answers its exit status.
    int stop(int signal = SIGTERM)
    {
        ::kill(static_cast<pid_t>(process.processId()), signal);
        EXPECT_TRUE(process.waitForFinished(20000));
        out += process.readAllStandardOutput();
        err += process.readAllStandardError();
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    QTemporaryDir home;
    QProcess process;
    QByteArray out, err;
    quint16 port = 0;
};

QStringList logFiles(const QString& folder)
{
    return QDir(folder).entryList({"skyvane_*.csv"}, QDir::Files, QDir::Name);
}

TEST(SensorListenHardening, EveryStopSignalAndAClosedOutputEndWithTheFinalSave)
{
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        SCOPED_TRACE(signal);
        QTemporaryDir folder;
        ListenRun run({"--log-dir", folder.path()});
        ASSERT_NE(run.port, 0) << run.err.constData();
        for (const char* line : {"0,7,a", "0,7,b", "0,7,c"})
            run.send(line);
        ASSERT_TRUE(run.waitForLines(4)) << run.out.constData();
        EXPECT_EQ(run.stop(signal), 0) << run.err.constData();
        const QStringList files = logFiles(folder.path());
        ASSERT_EQ(files.size(), 1) << run.err.constData();
        EXPECT_EQ(contentsOf(folder.filePath(files[0])), run.out) << "only the final save wrote the file";
    }

    // Standard output gone under the listener: a pipe nobody reads (as when "| head" has had
    // enough) or a full disk behind a redirection.
    const std::pair<std::function<void()>, const char*> outputs[] = {
        {[] {
             int ends[2];
             if (::pipe(ends) == 0) {
                 ::dup2(ends[1], STDOUT_FILENO);
                 ::close(ends[0]);
                 ::close(ends[1]);
             }
         },
         "standard output failed (Broken pipe)"},
        {[] {
             const int full = ::open("/dev/full", O_WRONLY);
             ::dup2(full, STDOUT_FILENO);
             ::close(full);
         },
         "standard output failed (No space left on device)"},
    };
    for (const auto& [redirect, message] : outputs) {
        SCOPED_TRACE(message);
        QTemporaryDir folder;
        ListenRun run({"--log-dir", folder.path()}, redirect);
        ASSERT_NE(run.port, 0) << run.err.constData();
        run.send("0,7,a");
        ASSERT_TRUE(run.process.waitForFinished(20000)) << "a failed standard output ends the run by itself";
        run.err += run.process.readAllStandardError();
        EXPECT_EQ(run.process.exitCode(), 1);
        EXPECT_TRUE(run.err.contains(message)) << run.err.constData();
        const QStringList files = logFiles(folder.path());
        ASSERT_EQ(files.size(), 1) << run.err.constData();
        EXPECT_TRUE(contentsOf(folder.filePath(files[0])).endsWith("Unknown : a\n")) << "the line was saved";
    }
}

TEST(SensorListenHardening, UnsavedLogSaysWhyAndFailsTheRun)
{
    QTemporaryDir scratch;
    QFile occupied(scratch.filePath("occupied"));
    ASSERT_TRUE(occupied.open(QIODevice::WriteOnly));
    occupied.close();
    struct Case {
        QStringList arguments;
        std::function<void()> childSetup;
        const char* status;  // nullptr: saved
    };
    const Case cases[] = {
        {{}, {}, "Please select directory for log files"},
        {{"--log-dir", scratch.filePath("occupied")}, {}, "occupied/skyvane_"},
        {{"--log-dir", scratch.filePath("new/nested")}, {}, nullptr},
        // A file-size limit stands in for a full disk: the write fails part-way.
        {{"--log-dir", scratch.filePath("full")},
         [] {
             ::signal(SIGXFSZ, SIG_IGN);
             const rlimit limit{100, 100};
             ::setrlimit(RLIMIT_FSIZE, &limit);
         },
         "File too large"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        ListenRun run(c.arguments, c.childSetup);
        ASSERT_NE(run.port, 0) << run.err.constData();
        run.send("0,7,a reading long enough to pass the file size limit of one hundred bytes");
        ASSERT_TRUE(run.waitForLines(2));
        const int status = run.stop();
        if (c.status == nullptr) {
            EXPECT_EQ(status, 0) << run.err.constData();
            EXPECT_EQ(logFiles(scratch.filePath("new/nested")).size(), 1);
            continue;
        }
        EXPECT_EQ(status, 1);
        EXPECT_TRUE(run.err.contains(c.status)) << run.err.constData();
        EXPECT_TRUE(run.err.contains("were never saved")) << run.err.constData();
        EXPECT_FALSE(run.err.contains("Unknown error")) << run.err.constData();
    }
    // "occupied" is a file: the system says so.
    ListenRun run({"--log-dir", scratch.filePath("occupied")});
    run.send("0,7,a");
    ASSERT_TRUE(run.waitForLines(2));
    run.stop();
    EXPECT_TRUE(run.err.contains(": Not a directory")) << run.err.constData();
}

TEST(SensorListenHardening, NamesTakenByOtherRunsGetACounter)
{
    QTemporaryDir folder;
    // Another run's files under every name this second and the next few can give.
    const QDateTime now = QDateTime::currentDateTime();
    QStringList foreign;
    for (int second = 0; second < 6; ++second) {
        const QString name = sensor::SensorLogFile::logFileNameForLaunch(now.addSecs(second)).mid(1);
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("not ours\n");
        foreign << name;
    }
    // Two listeners in one folder, started together.
    ListenRun first({"--log-dir", folder.path()});
    ListenRun second({"--log-dir", folder.path()});
    ASSERT_NE(first.port, 0);
    ASSERT_NE(second.port, 0);
    first.send("0,7,first");
    second.send("0,7,second");
    ASSERT_TRUE(first.waitForLines(2) && second.waitForLines(2));
    EXPECT_EQ(first.stop(), 0) << first.err.constData();
    EXPECT_EQ(second.stop(), 0) << second.err.constData();

    for (const QString& name : foreign)
        EXPECT_EQ(contentsOf(folder.filePath(name)), "not ours\n") << name.toStdString();
    QStringList ours = logFiles(folder.path());
    for (const QString& name : foreign)
        ours.removeOne(name);
    ASSERT_EQ(ours.size(), 2) << logFiles(folder.path()).join(' ').toStdString();
    QByteArrayList saved;
    for (const QString& name : ours) {
        EXPECT_TRUE(QRegularExpression(QStringLiteral("^skyvane_\\d\\d_\\d\\d_\\d{4}_\\d\\d_\\d\\d_\\d\\d-\\d+\\.csv$"))
                        .match(name)
                        .hasMatch())
            << name.toStdString();
        saved << contentsOf(folder.filePath(name));
    }
    EXPECT_TRUE(saved.contains(first.out));
    EXPECT_TRUE(saved.contains(second.out));
}

TEST(SensorListenHardening, NetworkTextCannotBreakTheCsv)
{
    QTemporaryDir folder;
    ListenRun run({"--log-dir", folder.path()});
    ASSERT_NE(run.port, 0);
    const QByteArray datagrams[] = {
        "0,7,a\nTIME,BSSID,fake row",
        "0,7,b\r\nc",
        QByteArray("0,7,nul\0end", 11),
        "0,7,x,=cmd|' /C calc'!A0,@SUM(1)",
        "253402300800000,9,far future",
        "0,1,51.5,-0.1,35.2,5",  // four GPS values: no row, no text
        "0,1,0.25,-0.25,432.25,5,8",
    };
    for (const QByteArray& datagram : datagrams)
        run.send(datagram);
    ASSERT_TRUE(run.waitForLines(7)) << run.out.constData();
    EXPECT_EQ(run.stop(), 0);

    const QStringList files = logFiles(folder.path());
    ASSERT_EQ(files.size(), 1);
    const QByteArray saved = contentsOf(folder.filePath(files[0]));
    EXPECT_EQ(saved, run.out);
    const QList<QByteArray> lines = saved.split('\n');
    ASSERT_EQ(lines.size(), 8) << saved.constData();
    EXPECT_TRUE(lines[7].isEmpty()) << "the file ends with a whole row";
    EXPECT_EQ(lines[0], "TIME,BSSID,SSID,RSSI,NOISE,CHANNEL,LATITUDE,LONGITUDE,ALTITUDE");
    const QByteArray expectedTails[] = {
        "Unknown : a\\nTIME,BSSID,fake row",
        "Unknown : b\\r\\nc",
        "Unknown : nul\\0end",
        "Unknown : x,\"'=cmd|' /C calc'!A0\",\"'@SUM(1)\"",
        "[253402300800000] Unknown : far future",
        ",-0.25000,432.2",
    };
    for (qsizetype i = 0; i < 6; ++i)
        EXPECT_TRUE(lines[i + 1].endsWith(expectedTails[i])) << lines[i + 1].constData();
    EXPECT_FALSE(run.err.contains("GPS")) << run.err.constData();
}

TEST(SensorListenHardening, DroppedDatagramsAreCountedInWords)
{
    QTemporaryDir folder;
    ListenRun run({"--log-dir", folder.path()});
    ASSERT_NE(run.port, 0);
    // A stalled listener: the kernel's queue fills and the rest is dropped.
    ::kill(static_cast<pid_t>(run.process.processId()), SIGSTOP);
    const int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(run.port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    constexpr int sent = 150000;
    const QByteArray line = "0,7,x";
    for (int i = 0; i < sent; ++i)
        ::sendto(fd, line.constData(), static_cast<std::size_t>(line.size()), 0,
                 reinterpret_cast<const sockaddr*>(&address), sizeof address);
    ::close(fd);
    ::kill(static_cast<pid_t>(run.process.processId()), SIGCONT);
    const QRegularExpression lost(QStringLiteral("(\\d+) datagrams lost: .*receive buffer \\(\\d+ bytes\\) overflowed"));
    const auto dropped = [&] {
        qint64 count = 0;
        for (auto it = lost.globalMatch(QString::fromUtf8(run.err)); it.hasNext();)
            count = it.next().captured(1).toLongLong();
        return count;
    };
    const auto rows = [&] { return run.out.count('\n') - 1; };
    // Every datagram becomes a row or is counted as lost.
    EXPECT_TRUE(waitFor(run.process, run.out, run.err, [&] { return dropped() > 0 && rows() + dropped() == sent; }))
        << rows() << " rows, " << dropped() << " lost; " << run.err.right(300).constData();
    EXPECT_EQ(run.stop(), 0);
    EXPECT_EQ(rows() + dropped(), sent) << "the count given at the stop is the total";
}

TEST(SensorListenHardening, SaveIntervalBeyondTheTimerIsAnError)
{
    for (const char* interval : {"31536001", "99999999999999999999"}) {
        const CliRun run = runCli({"--simulate", "listen", "--udp", "0", "--save-interval", interval});
        EXPECT_EQ(run.exitCode, 2) << interval;
        EXPECT_TRUE(run.err.contains("--save-interval can be at most 31536000 seconds")) << run.err.constData();
    }
}

} // namespace
