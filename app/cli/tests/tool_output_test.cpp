#include "app/cli/tool_command.h"
#include "app/cli/tool_output.h"

#include "scan/scan_result_derivation.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <cstdlib>
#include <memory>

namespace {

const QString kCapture = QStringLiteral(SKYVANE_SHARED_DIR "/captures/fragattacks_ping_I_E_R_E-fromclient.pcapng");

QByteArray element(int id, const QByteArray& body)
{
    return QByteArray(1, static_cast<char>(id)) + QByteArray(1, static_cast<char>(body.size())) + body;
}

// RSN or WPA suite lists: group, pairwise, AKM, each suite by its type byte.
QByteArray suites(const char* oui, int group, std::initializer_list<int> pairwise, std::initializer_list<int> akms)
{
    auto suite = [oui](int type) { return QByteArray(oui, 3) + QByteArray(1, static_cast<char>(type)); };
    QByteArray body = suite(group);
    body += QByteArray(1, static_cast<char>(pairwise.size())) + QByteArray(1, '\0');
    for (int type : pairwise)
        body += suite(type);
    body += QByteArray(1, static_cast<char>(akms.size())) + QByteArray(1, '\0');
    for (int type : akms)
        body += suite(type);
    return body;
}

QByteArray rsn(int group, std::initializer_list<int> pairwise, std::initializer_list<int> akms)
{
    return element(48, QByteArray("\x01\x00", 2) + suites("\x00\x0f\xac", group, pairwise, akms));
}

QByteArray wpa(int group, std::initializer_list<int> pairwise, std::initializer_list<int> akms)
{
    return element(221, QByteArray("\x00\x50\xf2\x01\x01\x00", 6) + suites("\x00\x50\xf2", group, pairwise, akms));
}

const QByteArray kHtCapabilities = element(45, QByteArray(26, '\0'));
QByteArray htOperation(int channel, int secondary)
{
    QByteArray body(22, '\0');
    body[0] = static_cast<char>(channel);
    body[1] = static_cast<char>(secondary | (secondary ? 0x04 : 0));
    return element(61, body);
}

platform::ScanResult network(const QByteArray& ssid, int channel, const QByteArray& extra, bool privacy = false)
{
    scan::RawBssFacts facts;
    facts.bssid = QStringLiteral("0a:1b:2c:3d:4e:5f");
    facts.signalDbm = -61;
    facts.noiseDbm = -92;
    facts.capabilityInfo = privacy ? 0x0011 : 0x0001;
    facts.beaconInterval = 100;
    facts.informationElements = element(0, ssid) + element(1, "\x82\x84\x8b\x96\x0c\x12\x18\x24")
                                + element(3, QByteArray(1, static_cast<char>(channel))) + extra;
    return scan::deriveScanResult(facts);
}

struct ParsedLine {
    QString bssid;
    QString channel;
    QString security;
};

// The scanner's reading of one listing line: blank runs collapsed, fields split on blanks,
// security fields joined with ", ", "NONE" read as "Open". Text may start at the 33rd character
// counted from 1 or from 0; both readings must agree.
ParsedLine parseListingLine(const QString& line, qsizetype from)
{
    QString rest = line.mid(from);
    rest.replace(QRegularExpression(QStringLiteral("[ \t]+")), QStringLiteral(" "));
    QStringList fields = rest.split(QLatin1Char(' '));
    if (!fields.isEmpty() && fields.first().isEmpty())
        fields.removeFirst();
    if (fields.size() < 6)
        return {};
    QString security = fields.mid(5).join(QStringLiteral(", "));
    if (security == u"NONE")
        security = QStringLiteral("Open");
    return {fields[0].toUpper(), fields[2], security};
}

TEST(ToolListing, LinesReadBackThroughTheScannersColumnRules)
{
    struct Case {
        QByteArray ssid;
        platform::ScanResult network;
        QString channel;
        QString security;
    };
    const QByteArray longSsid("a network name that runs past thirty-two characters");
    const Case cases[] = {
        {"home", network("home", 6, kHtCapabilities + htOperation(6, 1) + rsn(4, {4}, {2})), "6,+1",
         "WPA2(PSK/AES/AES)"},
        {"  two words ", network("  two words ", 40, kHtCapabilities + htOperation(40, 3) + rsn(4, {4}, {8})),
         "40,-1", "WPA3(SAE/AES/AES)"},
        {"mixed", network("mixed", 11, wpa(2, {2}, {2}) + rsn(2, {4, 2}, {2})), "11",
         "WPA(PSK/TKIP/TKIP), WPA2(PSK/AES,TKIP/TKIP)"},
        {"corp", network("corp", 1, rsn(4, {4}, {1}) + element(7, "DE \x01\x0d\x14")), "1",
         "WPA2(802.1x/AES/AES)"},
        {"transition", network("transition", 1, rsn(4, {4}, {2, 8})), "1", "WPA2/WPA3(PSK,SAE/AES/AES)"},
        {"short rsn", network("short rsn", 1, element(48, QByteArray("\x01\x00\x00\x0f\xac\x02", 6))), "1",
         "WPA2(802.1x/AES/TKIP)"},
        {"old", network("old", 3, {}, true), "3", "WEP"},
        {"", network("", 9, {}), "9", "Open"},
        {"line\nbreak", network("line\nbreak", 2, {}), "2", "Open"},
        {longSsid, network(longSsid, 2, {}), "2", "Open"},
        {"\xe4\xb8\xad\xe6\x96\x87 caf\xc3\xa9", network("\xe4\xb8\xad\xe6\x96\x87 caf\xc3\xa9", 2, {}), "2", "Open"},
    };
    for (const Case& c : cases) {
        const QString line = app::cli::scanListingLine(c.network);
        SCOPED_TRACE(line.toStdString());
        EXPECT_FALSE(line.contains(QLatin1Char('\n')));
        ASSERT_GT(line.size(), app::cli::kSsidColumns);
        EXPECT_EQ(line.left(app::cli::kSsidColumns).trimmed(),
                  c.network.ssid.left(app::cli::kSsidColumns).replace(QLatin1Char('\n'), QLatin1Char('?')).trimmed());
        for (qsizetype from : {app::cli::kSsidColumns, app::cli::kSsidColumns + 1}) {
            const ParsedLine parsed = parseListingLine(line, from);
            EXPECT_EQ(parsed.bssid, QStringLiteral("0A:1B:2C:3D:4E:5F"));
            EXPECT_EQ(parsed.channel, c.channel);
            EXPECT_EQ(parsed.security, c.security);
        }
    }
    const QString heading = app::cli::scanListingHeading();
    EXPECT_EQ(heading.indexOf(QStringLiteral("SSID")), app::cli::kSsidColumns - 4);
    EXPECT_EQ(heading.indexOf(QStringLiteral("BSSID")), app::cli::kSsidColumns + 1);
}

TEST(ToolListing, PropertyListIsAnArrayOfOneDictionaryPerNetwork)
{
    const QList<platform::ScanResult> networks{network("home\x01", 36, kHtCapabilities + rsn(4, {4}, {2})),
                                               network("", 1, {})};
    const QByteArray xml = app::cli::scanPropertyList(networks, core::InterfaceGeneration::Later);
    plist_t root = nullptr;
    plist_from_xml(xml.constData(), static_cast<std::uint32_t>(xml.size()), &root);
    ASSERT_TRUE(root) << xml.constData();
    std::unique_ptr<void, void (*)(plist_t)> owner(root, plist_free);
    ASSERT_EQ(plist_get_node_type(root), PLIST_ARRAY);
    ASSERT_EQ(plist_array_get_size(root), 2u);

    plist_t first = plist_array_get_item(root, 0);
    ASSERT_EQ(plist_get_node_type(first), PLIST_DICT);
    auto text = [first](const char* key) {
        char* value = nullptr;
        plist_get_string_val(plist_dict_get_item(first, key), &value);
        const QString result = QString::fromUtf8(value);
        std::free(value);
        return result;
    };
    EXPECT_EQ(text("BSSID"), QStringLiteral("0A:1B:2C:3D:4E:5F"));
    EXPECT_EQ(text("SECURITY"), QStringLiteral("WPA2(PSK/AES/AES)"));
    std::uint64_t rssi = 0;
    plist_get_uint_val(plist_dict_get_item(first, "RSSI"), &rssi);
    EXPECT_EQ(static_cast<std::int64_t>(rssi), -61);
    char* bytes = nullptr;
    std::uint64_t length = 0;
    plist_get_data_val(plist_dict_get_item(first, "IE"), &bytes, &length);
    EXPECT_EQ(QByteArray(bytes, static_cast<qsizetype>(length)), networks[0].informationElementData);
    std::free(bytes);
}

// The interface tab's reading: from the last line back to the second, the first "MCS:" line.
QString mcsOf(const QString& report)
{
    const QStringList lines = report.split(QLatin1Char('\n'));
    for (qsizetype i = lines.size() - 1; i >= 1; --i) {
        const QString& line = lines[i];
        if (!line.isEmpty() && line.contains(QStringLiteral("MCS:")))
            return line.mid(line.indexOf(QLatin1Char(':')) + 1).trimmed();
    }
    return {};
}

TEST(ToolLinkReport, McsIsFoundByTheInterfaceTabAndKeysAreAligned)
{
    platform::InterfaceSnapshot snapshot;
    snapshot.interfaceName = QStringLiteral("wlan0");
    snapshot.rssiValue = -52;
    snapshot.mcsIndex = 7;
    snapshot.wlanChannel = platform::WlanChannel{36, platform::ChannelBand::Band5GHz, platform::ChannelWidthCode::Width80MHz};
    const QString report = app::cli::linkReport(snapshot, core::InterfaceGeneration::Later);
    EXPECT_TRUE(report.startsWith(QStringLiteral("     agrCtlRSSI: -52\n")));
    EXPECT_EQ(mcsOf(report), QStringLiteral("7"));
    for (const QString& line : report.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        EXPECT_EQ(line.indexOf(QStringLiteral(": ")), 15) << line.toStdString();

    snapshot.mcsIndex.reset();
    EXPECT_EQ(mcsOf(app::cli::linkReport(snapshot, core::InterfaceGeneration::Later)), QString());
}

TEST(ToolLinkReport, ExplainNamesEachValuesSource)
{
    platform::InterfaceSnapshot snapshot;
    snapshot.rssiValue = -52;
    snapshot.sources = {{"rssiValue", "nl80211 station info: signal"}, {"*", "elsewhere"}};
    const QStringList lines =
        app::cli::linkReport(snapshot, core::InterfaceGeneration::Later, true).split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.value(0), "     agrCtlRSSI: -52   [nl80211 station info: signal]");
    EXPECT_TRUE(lines.value(1).endsWith("   [elsewhere]"));
    snapshot.sources.clear();
    EXPECT_TRUE(app::cli::linkReport(snapshot, core::InterfaceGeneration::Later, true).contains("[not reported]"));
}

TEST(ToolArguments, AcceptsEachCommandWithItsOptionsAndRejectsTheRest)
{
    struct Case {
        QStringList arguments;
        bool valid;
    };
    const Case cases[] = {
        {{"--simulate=12", "--seed", "7", "-s", "-x"}, true},
        {{"--capture", "f.pcap", "-I"}, true},
        {{"--interface=wlan1", "watch", "--interval", "0.5", "--count", "3"}, true},
        {{"-s", "-I"}, false},
        {{"-x"}, false},
        {{"-s", "--count", "2"}, false},
        {{"watch", "--interval", "0"}, false},
        {{"--simulate=0", "-s"}, false},
        {{"--simulate", "--capture", "f.pcap", "-s"}, false},
        {{"--seed", "3", "-s"}, false},
        {{"--capture"}, false},
    };
    for (const Case& c : cases) {
        QString error;
        const auto request = app::cli::parseToolArguments(c.arguments, &error);
        EXPECT_EQ(request.has_value(), c.valid) << c.arguments.join(' ').toStdString() << ": " << error.toStdString();
        EXPECT_EQ(error.isEmpty(), c.valid);
    }
    QString error;
    const auto watch = app::cli::parseToolArguments({"watch", "--interval=2.5", "--count=4"}, &error);
    ASSERT_TRUE(watch);
    EXPECT_EQ(watch->action, app::cli::ToolAction::Watch);
    EXPECT_EQ(watch->watchInterval, std::chrono::milliseconds(2500));
    EXPECT_EQ(watch->watchCount, 4);
}

struct CliRun {
    int exitCode = -1;
    QString out;
    QString err;
};

CliRun runCli(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(SKYVANE_BINARY_DIR "/app/cli/skyvane-cli"), arguments);
    EXPECT_TRUE(process.waitForFinished(60000));
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()), QString::fromUtf8(process.readAllStandardError())};
}

void expectListing(const CliRun& run)
{
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QStringList lines = run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_GE(lines.size(), 2);
    EXPECT_EQ(lines[0], app::cli::scanListingHeading());
    for (const QString& line : lines.mid(1))
        EXPECT_TRUE(QRegularExpression(QStringLiteral("^[0-9A-F]{2}(:[0-9A-F]{2}){5}$"))
                        .match(parseListingLine(line, app::cli::kSsidColumns).bssid)
                        .hasMatch())
            << line.toStdString();
}

TEST(ToolBinary, AnswersOnTheSimulatedEnvironment)
{
    const CliRun listing = runCli({"--simulate", "-s"});
    expectListing(listing);
    EXPECT_TRUE(listing.err.contains(QStringLiteral("Simulated environment")));

    const CliRun linkRun = runCli({"--simulate", "-I"});
    EXPECT_EQ(linkRun.exitCode, 0) << linkRun.err.toStdString();
    EXPECT_FALSE(mcsOf(linkRun.out).isEmpty()) << linkRun.out.toStdString();

    const CliRun watch = runCli({"--simulate=5", "watch", "--interval", "0.01", "--count", "2"});
    EXPECT_EQ(watch.exitCode, 0);
    EXPECT_TRUE(watch.out.startsWith(QStringLiteral("Simulated environment (chosen with --simulate)\n")));
    EXPECT_EQ(watch.out.count(app::cli::scanListingHeading()), 2);
}

TEST(ToolBinary, ReplaysACapture)
{
    if (!QFile::exists(kCapture))
        GTEST_SKIP() << "no shared capture at " << qPrintable(kCapture);
    const CliRun listing = runCli({"--capture", kCapture, "-s"});
    expectListing(listing);
    EXPECT_TRUE(listing.out.contains(QStringLiteral("BC:AE:C5:88:8C:20")));

    const CliRun xml = runCli({"--capture", kCapture, "-s", "-x"});
    EXPECT_EQ(xml.exitCode, 0);
    EXPECT_TRUE(xml.out.contains(QStringLiteral("<key>SSID_STR</key>")));
}

TEST(ToolBinary, MissingBackendsFailTheRun)
{
    const CliRun missing = runCli({"--capture", "/nonexistent/capture.pcap", "-s"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("/nonexistent/capture.pcap")));
    EXPECT_EQ(runCli({"--simulate", "--interface", "wlan9", "-s"}).exitCode, 1);
}

} // namespace
