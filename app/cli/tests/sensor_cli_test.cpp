#include "app/cli/gpx_track.h"
#include "app/cli/phone_readings.h"
#include "sensor/sensor_line.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <functional>

namespace {

const QString cli = QStringLiteral(SKYVANE_BINARY_DIR "/app/cli/skyvane-cli");

std::optional<QList<cli::GpxPoint>> parseGpx(const QByteArray& text, QString* error)
{
    QBuffer buffer;
    buffer.setData(text);
    buffer.open(QIODevice::ReadOnly);
    return cli::readGpxTrack(buffer, error);
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
    cli::PhoneReadings walk;
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

    cli::GpxPoint timed{10.0, 20.0, 5.0, QDateTime::fromMSecsSinceEpoch(1'000'000'000'000, Qt::UTC)};
    cli::PhoneReadings replay({timed, {10.001, 20.0, 6.0, {}}});
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
