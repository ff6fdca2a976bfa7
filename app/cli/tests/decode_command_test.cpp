#include "cli_run.h"

#include "app/cli/json_writer.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>
#include <vector>

namespace {

const QString captures = QStringLiteral(SKYVANE_SHARED_DIR "/captures/");

std::vector<QJsonObject> decode(const QString& file)
{
    const CliRun run = runCli({"decode", captures + file});
    EXPECT_EQ(run.exitCode, 0) << run.err.constData();
    std::vector<QJsonObject> objects;
    for (const QByteArray& line : run.lines)
        objects.push_back(QJsonDocument::fromJson(line).object());
    return objects;
}

QByteArray written(const std::function<void(JsonWriter&)>& fill, std::size_t chunkBytes = 1u << 20)
{
    std::FILE* file = std::tmpfile();
    {
        JsonWriter writer(file, chunkBytes);
        fill(writer);
    }
    std::rewind(file);
    QByteArray out;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, file)) > 0;)
        out.append(buffer, static_cast<qsizetype>(n));
    std::fclose(file);
    return out;
}

#define REQUIRE_CAPTURES()                                                                 \
    if (!QFile::exists(captures + "aircrack-ng_n-02.cap"))                                 \
    GTEST_SKIP() << "no captures under " SKYVANE_SHARED_DIR

} // namespace

TEST(JsonWriter, EscapesEncodesAndChunks)
{
    const QString tricky = QStringLiteral(u"a\"b\\c\n\u0001é中") + QChar(0xD83D) + QChar(0xDE00) + QChar(0xD800);
    const QByteArray out = written([&](JsonWriter& json) {
        json.beginObject();
        json.field("s", tricky);
        json.field("n", QString());
        json.field("e", QStringLiteral(""));
        json.field("l", std::optional<QStringList>(QStringList{"1(B)", "54"}));
        json.field("o", std::optional<QStringList>());
        for (double d : {2.4, 5.0, 144.4, -0.5, 0.25, 1e20})
            json.field("d", d);
        json.field("i", std::int8_t{-1});
        json.endObject();
    });
    EXPECT_EQ(out, QByteArray("{\"s\":\"a\\\"b\\\\c\\u000a\\u0001\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80\xEF\xBF\xBD\","
                              "\"n\":null,\"e\":\"\",\"l\":[\"1(B)\",\"54\"],\"o\":null,\"d\":2.4,\"d\":5,"
                              "\"d\":144.4,\"d\":-0.5,\"d\":0.25,\"d\":1e+20,\"i\":-1}\n"));

    const QByteArray chunked = written([](JsonWriter& json) {
        for (int i = 0; i < 3; ++i) {
            json.beginObject();
            json.field("t", QString(5000, QChar(u'x')));
            json.endObject();
        }
    }, 64);
    EXPECT_EQ(chunked, QByteArray("{\"t\":\"" + QByteArray(5000, 'x') + "\"}\n").repeated(3));
}

TEST(DecodeCommand, KeyOrderAndValues)
{
    REQUIRE_CAPTURES();
    const CliRun run = runCli({"decode", captures + "aircrack-ng_Chinese-SSID-Name.pcap"});
    ASSERT_EQ(run.lines.size(), 1);
    const QStringList keys = {"frame", "bssid", "ssid", "supportedDataRates", "maxDataRate",
        "shortGIFor24MhzEnabled", "shortGIFor40MhzEnabled", "numberOfStreams", "groupDataChiperEncryption",
        "pairWiseChiperEncryption", "connectedClientCount", "channelUtilization", "channelOffset", "protectionMode",
        "isWPS", "apname", "mobilityDomain", "channelWidth", "originalChannel", "channelBond", "rssi", "noise",
        "singnalToNoise", "cc", "vendorName", "supportedPHYModes", "ibss"};
    QStringList actualKeys;
    for (const auto& match : QRegularExpression(R"re("(\w+)":)re").globalMatch(QString::fromUtf8(run.lines[0])))
        actualKeys << match.captured(1);
    EXPECT_EQ(actualKeys, keys);

    const QJsonObject o = QJsonDocument::fromJson(run.lines[0]).object();
    EXPECT_EQ(o["frame"].toInt(), 1);
    EXPECT_EQ(o["ssid"].toString(), QStringLiteral(u"\u00B2\u00E2\u00CA\u00D4"));
    EXPECT_EQ(o["channelWidth"].toInt(), 40);
    EXPECT_EQ(o["channelOffset"].toInt(), -1);
    EXPECT_EQ(o["channelUtilization"].toInt(), 7);
    EXPECT_EQ(o["channelBond"].toDouble(), 2.4);
    EXPECT_EQ(o["noise"].toInt(), -92);
    EXPECT_TRUE(o["cc"].isNull());
}

TEST(DecodeCommand, RealCaptures)
{
    REQUIRE_CAPTURES();
    const auto vht = decode("aircrack-ng_n-02.cap");
    ASSERT_EQ(vht.size(), 10u);
    for (const QJsonObject& o : vht) {
        EXPECT_EQ(o["numberOfStreams"].toInt(), 4);
        EXPECT_EQ(o["channelWidth"].toInt(), 80);
        EXPECT_EQ(o["channelBond"].toDouble(), 5.0);
        EXPECT_EQ(o["cc"].toString(), "US");
        EXPECT_EQ(o["supportedPHYModes"].toString(), "a/n/ac");
    }

    const auto noiseOnly = decode("tcpdump_ieee802.11_exthdr.pcap");
    ASSERT_EQ(noiseOnly.size(), 6u);
    EXPECT_EQ(noiseOnly[0]["frame"].toInt(), 3);
    EXPECT_EQ(noiseOnly[0]["rssi"].toInt(), 0);
    EXPECT_EQ(noiseOnly[0]["noise"].toInt(), -86);

    QStringList names;
    for (const QJsonObject& o : decode("pypacker_packets_prism.pcap")) {
        if (!o["apname"].isNull() && !names.contains(o["apname"].toString().remove(QChar(0))))
            names << o["apname"].toString().remove(QChar(0));
    }
    names.sort();
    EXPECT_EQ(names, QStringList({"AP-3-Stock", "AP-4-Stock", "AP-5-Stock", "Speedpoint-WLAN"}));
}

TEST(DecodeCommand, UnreadableFilesGiveOneErrorLine)
{
    QTemporaryDir dir;
    const std::pair<QString, QByteArray> files[] = {
        {"notes.txt", "this is not a capture\n"},
        {"empty.pcap", ""},
        {"ethernet.pcap", QByteArray::fromHex("d4c3b2a1020004000000000000000000ffff000001000000")},
    };
    QStringList paths{dir.filePath("missing.pcap")};
    for (const auto& [name, bytes] : files) {
        QFile file(dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        paths << file.fileName();
    }
    auto expectOneError = [](const CliRun& run, const QString& path) {
        EXPECT_EQ(run.exitCode, 1) << path.toStdString();
        EXPECT_TRUE(run.err.startsWith(("skyvane-cli: " + path + ": ").toUtf8())) << run.err.constData();
        EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
    };
    for (const QString& path : paths) {
        const CliRun run = runCli({"decode", path});
        expectOneError(run, path);
        EXPECT_TRUE(run.lines.isEmpty());
    }

    REQUIRE_CAPTURES();
    const QString truncated = captures + "scapy_bad_rsn_parsing_overrides_ssid.pcap";
    const CliRun run = runCli({"decode", truncated});
    expectOneError(run, truncated);
    ASSERT_EQ(run.lines.size(), 1);
    EXPECT_EQ(QJsonDocument::fromJson(run.lines[0]).object()["ssid"].toString(), "ROUTE-821E295");
}

TEST(CliUsage, BadArgumentsOfEveryCommandPrintUsage)
{
    for (const QStringList& arguments :
         {QStringList{}, QStringList{"frobnicate"}, QStringList{"decode"}, QStringList{"decode", "a", "b"},
          QStringList{"scan", "--count", "two"}, QStringList{"-s", "--frobnicate"}, QStringList{"-I", "-x"}}) {
        const CliRun run = runCli(arguments);
        EXPECT_EQ(run.exitCode, 2) << arguments.join(' ').toStdString();
        EXPECT_TRUE(run.lines.isEmpty());
        EXPECT_TRUE(run.err.startsWith("usage: skyvane-cli")) << run.err.constData();
    }
    EXPECT_TRUE(runCli({"scan", "--count", "two"}).err.contains("--count")) << "the usage names the bad option";
}

namespace {

// Every file under root with its size and modification time.
QStringList fileStates(const QString& root)
{
    QStringList states;
    QDirIterator it(root, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo info(it.next());
        states << QStringLiteral("%1 %2 %3").arg(info.filePath()).arg(info.size())
                      .arg(info.lastModified().toMSecsSinceEpoch());
    }
    states.sort();
    return states;
}

} // namespace

// Decoding is reading only: access-point names and everything else stay in the output, and no
// setting or other file is created or touched in the user's home or configuration folders.
TEST(DecodeCommand, WritesNothing)
{
    REQUIRE_CAPTURES();
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    ASSERT_TRUE(QDir(dir.path()).mkpath("config/skyvane") && QDir(dir.path()).mkpath("home"));
    QFile existing(dir.filePath("config/skyvane/skyvane.conf"));
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.write("[General]\nscanInterval=5\n");
    existing.close();
    const QStringList before = fileStates(dir.path());

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", dir.filePath("home"));
    environment.insert("XDG_CONFIG_HOME", dir.filePath("config"));
    environment.insert("XDG_DATA_HOME", dir.filePath("home/.local/share"));
    environment.insert("XDG_CACHE_HOME", dir.filePath("home/.cache"));
    environment.insert("XDG_STATE_HOME", dir.filePath("home/.local/state"));
    for (const char* file : {"pypacker_packets_prism.pcap", "aircrack-ng_n-02.cap"}) {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(SKYVANE_BINARY_DIR "/app/cli/skyvane-cli"), {"decode", captures + file});
        ASSERT_TRUE(process.waitForFinished(60000));
        EXPECT_EQ(process.exitCode(), 0) << file;
        const QByteArray out = process.readAllStandardOutput();
        if (QByteArray(file).startsWith("pypacker")) {
            EXPECT_TRUE(out.contains("AP-3-Stock")) << "the AP names are in the output";
        }
    }
    EXPECT_EQ(fileStates(dir.path()), before);
}
