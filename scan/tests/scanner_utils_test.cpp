#include "scan/scanner_utils.h"

#include "core/interface_generation.h"
#include "platform/api/scan_result.h"
#include "scan/number_format.h"
#include "scan/oui_map.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <ctime>
#include <limits>
#include <utility>

namespace {

using Texts = std::pair<const char*, const char*>;

QString latin1(const char* text) { return QString::fromLatin1(text); }

QDateTime utc(int year, int month, int day, int hour, int minute, int second, int msec = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second, msec), QTimeZone::utc());
}

void setHostZone(const char* zone)
{
    qputenv("TZ", zone);
    tzset();
}

class VendorTableTest : public ::testing::Test {
protected:
    void TearDown() override { scan::ScannerUtils::loadOuiFrom(latin1(scan::OuiMap::resourcePath)); }
};

TEST_F(VendorTableTest, BundledRegistryNamesKnownVendors)
{
    EXPECT_EQ(scan::ScannerUtils::vendorNameForMAC(QStringLiteral("00:1b:63:84:45:e6")), QStringLiteral("Apple, Inc."));
    EXPECT_GT(scan::OuiMap::shared().size(), 30000);
    for (const auto& [mac, vendor] : {Texts{"0:0:c:1:2:3", "Cisco Systems, Inc"},
             Texts{"3C:5A:B4:01:02:03", "Google, Inc."}, Texts{"02:00:00:00:00:01", "Unknown"}, Texts{"", ""}}) {
        EXPECT_EQ(scan::ScannerUtils::vendorNameForMAC(latin1(mac)), latin1(vendor)) << mac;
    }
}

TEST_F(VendorTableTest, OwnFileFollowsTheLineRules)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("oui.txt"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("00:11:22\t  Acme Corp   # bought by Globex\n00:11:33\tFirst\n00:11:33\tSecond\n"
               "00:11:44\tThird field ignored\textra\n00:11:55\t# only a comment\n"
               "aa:bb:cc\tLower-case key never matches\n00:11:66 no tab at all\n00:11:77\tCarriage return\r\n");
    file.close();
    scan::ScannerUtils::loadOuiFrom(path);
    for (const auto& [mac, vendor] : {Texts{"00:11:22:aa:bb:cc", "Acme Corp"}, Texts{"0:11:33:1:2:3", "Second"},
             Texts{"00:11:44:00:00:00", "Third field ignored"}, Texts{"00:11:55:00:00:00", ""},
             Texts{"aa:bb:cc:00:00:00", "Unknown"}, Texts{"00:11:66:00:00:00", "Unknown"},
             Texts{"00:11:77:00:00:00", "Carriage return"}}) {
        EXPECT_EQ(scan::ScannerUtils::vendorNameForMAC(latin1(mac)), latin1(vendor)) << mac;
    }

    scan::ScannerUtils::loadOuiFrom(dir.filePath(QStringLiteral("missing.txt")));
    EXPECT_EQ(scan::ScannerUtils::vendorNameForMAC(QStringLiteral("00:11:22:aa:bb:cc")), QStringLiteral("Unknown"));
}

TEST(ScannerUtilsText, MacAndNameNormalisation)
{
    const struct { const char* mac; const char* normalized; const char* shortForm; } cases[] = {
        {"0:1b:c:d:e:f", "00:1B:0C:0D:0E:0F", ":0D:0E:0F"},
        {"abc:1", "ABC:01", ""},
        {"a::b", "0A::0B", ""},
        {"\xe4:b", "0\xc4:0B", ""},
        {"", "", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(scan::ScannerUtils::normalizeMAC(latin1(c.mac)), latin1(c.normalized)) << c.mac;
        EXPECT_EQ(scan::ScannerUtils::shortMAC(latin1(c.mac)), latin1(c.shortForm)) << c.mac;
    }
    EXPECT_EQ(scan::ScannerUtils::normalizeString(QString::fromUtf8("Café Wi-Fi_5G!")), QStringLiteral("CafWiFi5G"));
    EXPECT_FALSE(scan::ScannerUtils::hasValue(QStringLiteral(" \t ")));
    EXPECT_TRUE(scan::ScannerUtils::hasValue(QStringLiteral(" x ")));
}

// Code, text under the oldest interface generation, text under the current one; a null
// pointer stands for "no text" (a null QString).
struct ModeRow {
    int code;
    const char* older;
    const char* current;
};

void expectRows(QString (*function)(int, core::InterfaceGeneration), std::initializer_list<ModeRow> rows)
{
    for (const bool oldest : {true, false}) {
        const auto generation = oldest ? core::InterfaceGeneration::OldestRelease : core::InterfaceGeneration::Later;
        for (const ModeRow& row : rows) {
            const char* expected = oldest ? row.older : row.current;
            const QString text = function(row.code, generation);
            EXPECT_EQ(text.isNull(), expected == nullptr) << row.code << " oldest=" << oldest;
            EXPECT_EQ(text, latin1(expected)) << row.code << " oldest=" << oldest;
        }
    }
}

TEST(ScannerUtilsModes, BothGenerationsOfEveryTable)
{
    expectRows(&scan::ScannerUtils::stringForPHYMode, {{0, "a", "None"}, {1, "b", "a"}, {2, "g", "b"}, {3, "n", "g"},
                                                    {4, "", "n"}, {5, "", "ac"}, {6, "", ""}, {-1, "", ""}});
    expectRows(&scan::ScannerUtils::stringForOpMode, {{0, "Infrastructure", "None"}, {1, "IBSS", "Infrastructure"},
                                                   {2, "Host Access Point", "IBSS"},
                                                   {3, "Monitor Mode", "Host Access Point"}, {4, nullptr, nullptr}});
    expectRows(&scan::ScannerUtils::stringForSecurityMode,
        {{-1, "Secured", "Secured"}, {0, "Open", "Open"}, {3, "WPA2 Personal", "WPA2 Personal Mixed"},
            {4, "802.1X WEP", "WPA2 Personal"}, {5, "WPA Enterprise", "Personal"}, {6, "WPA2 Enterprise", "802.1X WEP"},
            {7, "WiFi Protected Setup", "WPA Enterprise"}, {8, nullptr, "Unknown"}, {9, nullptr, "WPA2 Enterprise"},
            {10, nullptr, "Enterprise"}, {11, nullptr, "Unknown"}, {-2, nullptr, "Unknown"}});

    // Names keep the oldest generation's numbering even under the current one.
    EXPECT_EQ(scan::ScannerUtils::securityModeForString(QStringLiteral("WPA2 Personal")), 3);
    EXPECT_EQ(scan::ScannerUtils::securityModeForString(QStringLiteral("wep")), 0);
}

TEST(ScannerUtilsModes, SupportedPhyModesJoinedPerGeneration)
{
    using namespace platform;
    const struct { std::uint32_t modes; const char* older; const char* current; } cases[] = {
        {PhyB | PhyG | PhyN, "b/g/n", "b/g/n"}, {PhyA | PhyN | PhyAC, "a/n", "a/n/ac"}, {0, "", ""}};
    for (const auto& c : cases) {
        ScanResult network;
        network.phyModes = c.modes;
        for (const bool oldest : {true, false}) {
            const auto generation = oldest ? core::InterfaceGeneration::OldestRelease : core::InterfaceGeneration::Later;
            EXPECT_EQ(scan::ScannerUtils::getSupportedPHYModeString(network, generation), latin1(oldest ? c.older : c.current))
                << c.modes << " oldest=" << oldest;
        }
    }
    // A network with no known mode is stored and printed as "", never as a missing value.
    EXPECT_FALSE(scan::ScannerUtils::getSupportedPHYModeString(ScanResult{}, core::InterfaceGeneration::Later).isNull());
}

TEST(ScannerUtilsNumbers, OneFractionDigitHalfEven)
{
    const std::pair<float, const char*> cases[] = {{0.25f, "0.2"}, {0.75f, "0.8"}, {72.0f, "72"}, {1300.0f, "1300"},
        {1234567.0f, "1234567"}, {7.2f * 9, "64.8"}, {6.5f, "6.5"}, {-3.45f, "-3.5"}, {0.0f, "0"}};
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(scan::ScannerUtils::formatNumber(value), latin1(text)) << value;
    }
    // Far more distinct values than cache slots, visited twice, so evicted slots are refilled.
    for (int pass = 0; pass < 2; ++pass) {
        for (int i = -3000; i <= 3000; i += 7) {
            const float value = static_cast<float>(i) * 0.05f;
            ASSERT_EQ(scan::NumberFormat::format(value), scan::NumberFormat::formatUncached(value)) << value;
        }
    }
}

TEST(ScannerUtilsDates, PatternsInTheLocalZone)
{
    setHostZone("UTC");
    const struct { const char* pattern; QDateTime date; const char* text; } cases[] = {
        {"yyyy-MM-dd HH:mm:ss", utc(2023, 12, 31, 13, 5, 9), "2023-12-31 13:05:09"},
        // The week holding Sunday 31 December 2023 already belongs to 2024.
        {"YYYY yyyy", utc(2023, 12, 31, 0, 0, 0), "2024 2023"},
        {"YYYY", utc(2024, 12, 28, 12, 0, 0), "2024"},
        {"YYYY", utc(2024, 12, 29, 12, 0, 0), "2025"},
        {"MM_dd_YYYY_hh_mm_ss", utc(2023, 6, 15, 15, 4, 5), "06_15_2023_03_04_05"},
        {"hh:mm a", utc(2023, 6, 15, 0, 30, 0), "12:30 AM"},
        {"ss.SSSS", utc(2023, 6, 15, 0, 0, 7, 123), "07.1230"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(scan::ScannerUtils::formatDate(latin1(c.pattern), c.date), latin1(c.text)) << c.pattern;
    }
    EXPECT_TRUE(scan::ScannerUtils::formatDate(QStringLiteral("yyyy"), QDateTime()).isNull());

    setHostZone("America/New_York");
    EXPECT_EQ(scan::ScannerUtils::formatDate(QStringLiteral("HH:mm"), utc(2023, 6, 15, 12, 0, 0)), QStringLiteral("08:00"));
    setHostZone("UTC");
}

TEST(ScannerUtilsDates, LastSeenIsNowForSevenSeconds)
{
    const QDateTime now = utc(2024, 3, 1, 12, 0, 0);
    const std::pair<qint64, const char*> cases[] = {{60'000, "now"}, {-7'000, "now"}, {-7'001, "7 seconds ago"},
        {-300'000, "5 minutes ago"}, {-7'259'000, "2 hours ago"}, {-3 * 86'400'000LL, "3 days ago"},
        {-400 * 86'400'000LL, "1 year ago"}};
    for (const auto& [offsetMs, text] : cases) {
        EXPECT_EQ(scan::ScannerUtils::stringForLastSeenDate(now.addMSecs(offsetMs), now), latin1(text)) << offsetMs;
    }
}

TEST(ScannerUtilsBytes, BinaryAndHexConversions)
{
    const struct { std::uint64_t value; int digits; const char* bits; } binary[] = {
        {5, 2, "00000101"}, {5, 0, "101"}, {1, 2, "1"}, {0, 3, "0"}, {2, 1, "0010"}, {255, 1, "11111111"}};
    for (const auto& c : binary) {
        EXPECT_EQ(scan::ScannerUtils::toBinary(c.value, c.digits), latin1(c.bits)) << c.value << "/" << c.digits;
    }
    EXPECT_EQ(scan::ScannerUtils::toBinary(std::numeric_limits<std::uint64_t>::max(), 0), QString(64, QLatin1Char('1')));

    EXPECT_TRUE(scan::ScannerUtils::stringFromHexString(QStringLiteral("41424")).isNull());
    EXPECT_EQ(scan::ScannerUtils::stringFromHexString(QStringLiteral("414243")), QStringLiteral("ABC"));
    EXPECT_EQ(scan::ScannerUtils::stringFromHexString(QStringLiteral("410042e9")), QString::fromUtf8("A\0Bé", 5));
    EXPECT_EQ(scan::ScannerUtils::stringFromHexString(QStringLiteral("4g")), QString(QChar(4)));

    EXPECT_EQ(scan::ScannerUtils::NSDataFromHexString(QStringLiteral("41 42-4a")), QByteArray("ABJ"));
    EXPECT_EQ(scan::ScannerUtils::NSDataFromHexString(QStringLiteral("abc")), QByteArray("\xAB"));
    EXPECT_EQ(scan::ScannerUtils::NSDataFromHexString(QStringLiteral("0x1F")), QByteArray("\x01", 1));

    EXPECT_EQ(scan::ScannerUtils::getIntData(QByteArray("\x00\xFF", 2), 1), 255);
    EXPECT_EQ(scan::ScannerUtils::getIntData(QByteArray("\x00\xFF", 2), 2), 0);
}

} // namespace
