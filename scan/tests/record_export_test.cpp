#include "core/memory_settings.h"
#include "scan/scaned_result_info.h"
#include "scan/scanner_utils.h"
#include "scan/value_transformers.h"


#include <gtest/gtest.h>

namespace {

const char* const visibilityKeys[] = {
    "bssidTagColumnVisible", "vendorNameColumnVisible", "channelColumnVisible", "channelWidthColumnVisible",
    "channelBondColumnVisible", "rssiColumnVisible", "noiseColumnVisible", "snColumnVisible", "phyModeColumnVisible",
    "numberOfStreamsColumnVisible", "maxDataRateColumnVisible", "securityColumnVisible", "wpsColumnVisible",
    "apnameColumnVisible", "connectedClientsColumnVisible", "channelUtilizationColumnVisible",
    "protectionModeColumnVisible", "mobilityDomainColumnVisible", "ibssColumnVisible", "ccColumnVisible",
    "lastseenColumnVisible"};
constexpr std::uint32_t allColumns = (1u << 21) - 1;

// Splits one CSV line the way a spreadsheet would: quoted cells may hold commas, quotes and newlines.
QStringList csvCells(const QString& line)
{
    QStringList cells{QString()};
    bool quoted = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line.at(i);
        if (c == u'"' && quoted && i + 1 < line.size() && line.at(i + 1) == u'"')
            cells.last() += line.at(++i);
        else if (c == u'"')
            quoted = !quoted;
        else if (c == u',' && !quoted)
            cells.append(QString());
        else if (c != u'\n' || quoted)
            cells.last() += c;
    }
    cells.removeLast();  // after the comma that closes the last cell
    return cells;
}

class RecordExportTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        showColumns(allColumns);
    }

    // Bit i shows the column of visibilityKeys[i].
    void showColumns(std::uint32_t mask)
    {
        for (const char* key : visibilityKeys) {
            settings_.setValue(QLatin1String(key), mask & 1u);
            mask >>= 1;
        }
    }

    static scan::ScanedResultInfo sample(const char* exportType)
    {
        scan::ScanedResultInfo r;
        r.exportType = QLatin1String(exportType);
        r.ssid = QStringLiteral("lab");
        r.bssid = QStringLiteral("AA:BB:CC:00:00:01");
        r.bssidTag = QStringLiteral("desk");
        r.vendorName = QStringLiteral("Acme Corp");
        r.originalChannel = 6;
        r.channelOffset = -1;
        r.channelWidth = 40;
        r.channelBond = 2.4;
        r.rssi = -50;
        r.noise = -92;
        r.singnalToNoise = 42;
        r.supportedPHYModes = QStringLiteral("b/g/n");
        r.supportedDataRates = QStringList{QStringLiteral("1(B)"), QStringLiteral("54(B)")};
        r.securityModeString = QStringLiteral("WPA2 Personal");
        r.groupDataChiperEncryption = QStringLiteral("CCMP");
        r.isWPS = -1;
        r.connectedClientCount = 0;
        r.channelUtilization = 0;
        r.lastSeen = QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9));
        return r;
    }

    core::MemorySettings settings_;
};

} // namespace

TEST_F(RecordExportTest, CsvRowCarriesEveryColumnInTheTableFormats)
{
    showColumns(0);
    scan::ScanedResultInfo r = sample("csv");
    EXPECT_EQ(r.toString(settings_),
              QStringLiteral("\"lab\",AA:BB:CC:00:00:01,desk,\"Acme Corp\",\"6,-1\",40 MHz,2.4 GHz,-50 dBm,-92 dBm,42 dB,"
                             "b/g/n,,54.0 Mbps,\"WPA2 Personal\",CCMP,,,,N/A,0%,N/A,N/A,No,,2024-05-06 07:08:09,\n"));
    EXPECT_EQ(csvCells(r.getHeader(settings_)).size(), csvCells(r.toString(settings_)).size() + 1);  // + the test name
    EXPECT_TRUE(r.getHeader(settings_).contains(QLatin1String("\"GCDE\"")));

    struct Case { std::int64_t offset; double band; const char* cells; };
    const Case cases[] = {{0, 5.0, ",36,40 MHz,5 GHz,"}, {1, 5.0, ",\"36,+1\",40 MHz,5 GHz,"}, {-7, 2.4, ",\"36,-7\",40 MHz,2.4 GHz,"}};
    for (const Case& c : cases) {
        r.originalChannel = 36;
        r.channelOffset = c.offset;
        r.channelBond = c.band;
        EXPECT_TRUE(r.toString(settings_).contains(QLatin1String(c.cells))) << r.toString(settings_).toStdString();
    }
}

TEST_F(RecordExportTest, HtmlOmitsHiddenColumnsAndHeadingAgreesWithRow)
{
    for (const std::uint32_t visible : {allColumns, 0u, 0x155555u, 0x092492u, 0x004000u}) {
        showColumns(visible);
        scan::ScanedResultInfo r = sample("html");
        const QString header = r.getHeader(settings_);
        const QString row = r.toString(settings_);
        EXPECT_TRUE(header.startsWith(QLatin1String("<thead><tr><th>SSID</th>")) && header.endsWith(QLatin1String("</thead>\n")));
        EXPECT_EQ(header.count(QLatin1String("<th>")), row.count(QLatin1String("<td>"))) << row.toStdString();
        EXPECT_EQ(row.contains(QLatin1String("<td>N/A</td>")), (visible & 0x34000u) != 0);
    }
    showColumns(0);
    EXPECT_EQ(sample("html").toString(settings_), QStringLiteral("<td>lab</td><td>AA:BB:CC:00:00:01</td>"));
}

TEST_F(RecordExportTest, CsvHeadingIsExactWhateverTheSettings)
{
    showColumns(0x0a5a5au);
    EXPECT_EQ(sample("csv").getHeader(settings_),
              QStringLiteral("\"Test Name\",\"SSID\",BSSID,Tag,\"Vendor OUI\",Channel,Channel Width,Channel Band,"
                             "Signal (dBm),Noise (dBm),\"SNR\",\"PHY Modes\",\"Streams\",\"Max Rate\",\"Security\","
                             "\"GCDE\",\"PCE\",\"WPS\",\"AP Name\",\"# Clients\",\"Channel Utilization\","
                             "\"Protection Mode\",802.11r,Ad-Hoc,Country Code,\"Last Seen\",\n"));
    showColumns(allColumns);
    EXPECT_EQ(sample("html").getHeader(settings_),
              QStringLiteral("<thead><tr><th>SSID</th><th>BSSID</th><th>Tag</th><th>Vendor OUI</th><th>Channel</th>"
                             "<th>Channel Width</th><th>Channel Band</th><th>Signal</th><th>Noise</th><th>SNR</th>"
                             "<th>PHY Modes</th><th>Streams</th><th>Max Rate</th><th>Security</th><th>GDCE</th><th>PCE</th>"
                             "<th>WPS</th><th>AP Name</th><th># Clients</th><th>Channel Utilization</th>"
                             "<th>Protection Mode</th><th>802.11r</th><th>Ad-Hoc</th><th>Country Code</th>"
                             "<th>Last Seen</th></tr></thead>\n"));
}

// A settings file hands a switch stored as a boolean back as the text "true" in the next run.
TEST_F(RecordExportTest, VisibilityStoredAsTextStillShowsTheColumn)
{
    showColumns(0);
    const struct {
        QVariant stored;
        bool shown;
    } cases[] = {{QStringLiteral("true"), true}, {QStringLiteral("1"), true}, {QStringLiteral("false"), false}, {true, true}};
    for (const auto& c : cases) {
        settings_.setValue(QStringLiteral("rssiColumnVisible"), c.stored);
        scan::ScanedResultInfo r = sample("html");
        EXPECT_EQ(r.getHeader(settings_).contains(QLatin1String("<th>Signal</th>")), c.shown) << c.stored.toString().toStdString();
        EXPECT_EQ(r.toString(settings_).contains(QLatin1String("<td>-50 dBm</td>")), c.shown);
    }
}

TEST_F(RecordExportTest, HostileTextsCannotBreakOutOfTheirCells)
{
    struct Case { const char* ssid; const char* apname; const char* ssidCell; const char* apnameCell; };
    const Case cases[] = {
        {"<script>alert(1)</script>", "a&b", "<script>alert(1)</script>", "a&b"},
        {"say \"hi\"", "x,y", "say \"hi\"", "x,y"},
        {"two\nlines", "\"quoted\"", "two\nlines", "\"quoted\""},
        {"=HYPERLINK(\"x\")", "+1+1", "'=HYPERLINK(\"x\")", "'+1+1"},
        {"@SUM(A1)", "-2", "'@SUM(A1)", "'-2"},
    };
    for (const Case& c : cases) {
        scan::ScanedResultInfo r = sample("csv");
        r.ssid = QString::fromUtf8(c.ssid);
        r.apname = QString::fromUtf8(c.apname);
        r.bssidTag = QString::fromUtf8(c.apname);
        const QStringList cells = csvCells(r.toString(settings_));
        ASSERT_EQ(cells.size(), 25) << c.ssid;
        EXPECT_EQ(cells.at(0), QString::fromUtf8(c.ssidCell));
        EXPECT_EQ(cells.at(2), QString::fromUtf8(c.apnameCell));
        EXPECT_EQ(cells.at(17), QString::fromUtf8(c.apnameCell));

        r.exportType = QStringLiteral("html");
        const QString html = r.toString(settings_);
        EXPECT_TRUE(html.startsWith(QLatin1String("<td>") + QString::fromUtf8(c.ssid).toHtmlEscaped() + QLatin1String("</td>")));
        EXPECT_FALSE(html.contains(QLatin1String("<script>")) || html.contains(QLatin1String("a&b")));
    }
}

TEST(ValueTransformers, RegisteredNamesTurnNumbersIntoCellTexts)
{
    scan::ValueTransformerRegistry::registerDefaultTransformers();
    struct Case { const char* name; QVariant input; const char* text; };
    const Case cases[] = {
        {"NSBoolToStringTransformer", QVariant(), ""}, {"NSBoolToStringTransformer", -1, ""},
        {"NSBoolToStringTransformer", QVariant::fromValue<qint8>(-1), ""}, {"NSBoolToStringTransformer", 1, "Yes"},
        {"NSBoolToStringTransformer", 0, "No"}, {"NSBoolToEnableDIsableTransformer", -1, ""},
        {"NSBoolToEnableDIsableTransformer", 1, "Enabled"}, {"NSBoolToEnableDIsableTransformer", 0, "Disabled"},
        {"SignalToStringTransformer", 0, ""}, {"ChannelToStringTransformer", 80, "80 MHz"},
        {"SpeedToStringTransformer", QVariant(), ""}, {"SpeedToStringTransformer", QStringLiteral("54(B)"), "54(B) Mbps"},
        {"SpeedToStringTransformer", 144.4, "144.4 Mbps"}, {"ChannelBandTransformer", 0.0, ""},
        {"ChannelBandTransformer", 2.4, "2.4 GHz"}, {"ChannelBandTransformer", 5.0, "5 GHz"},
        {"SNRToStringTransformer", 0, ""}, {"SNRToStringTransformer", 34, "34 dB"},
        {"NumberTransformer", 0, ""}, {"NumberTransformer", 12, "12"},
        {"ChannelUtilizationTransformer", 0, ""}, {"ChannelUtilizationTransformer", 0.6, ""},
        {"ChannelUtilizationTransformer", 51, "51%"},
    };
    for (const Case& c : cases) {
        const auto transformer = scan::ValueTransformerRegistry::valueTransformerForName(QLatin1String(c.name));
        ASSERT_NE(transformer, nullptr) << c.name;
        const QString text = transformer->transformedValue(c.input);
        EXPECT_EQ(text, QLatin1String(c.text)) << c.name << " " << c.input.toString().toStdString();
        EXPECT_FALSE(text.isNull()) << c.name;
    }
    EXPECT_EQ(scan::ValueTransformerRegistry::valueTransformerForName(QStringLiteral("NSBoolToEnableDisableTransformer")), nullptr);
}
