#include "scan/element_iterator.h"
#include "scan/scaned_result_info.h"
#include "scan/suite_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const QString htSelector =
    QStringLiteral("BSS requires support for mandatory features of HT PHY (IEEE 802.11 - Clause 20)");

// A record as the driver hands it over after a reset, so "unchanged" is distinguishable.
scan::ScanedResultInfo parsed(const QByteArray& hex, int channelWidth = 20)
{
    scan::ScanedResultInfo record;
    record.bssid = QStringLiteral("00:11:22:33:44:55");
    record.shortGIFor24MhzEnabled = -1;
    record.shortGIFor40MhzEnabled = -1;
    record.isWPS = -1;
    record.connectedClientCount = -1;
    record.channelOffset = 7;
    record.channelWidth = channelWidth;
    record.parseInformationElement(QByteArray::fromHex(hex));
    return record;
}

TEST(InformationElementParser, RateElementsKeepBasicMarksOnlyWhenExtended)
{
    const struct { const char* hex; QStringList rates; } cases[] = {
        {"01 04 82 84 8B 96", {"1", "2", "5.5", "11"}},
        {"32 04 82 84 8B 96", {"1(B)", "2(B)", "5.5(B)", "11(B)"}},
        {"01 03 FF 7F 0C 32 02 FF EC", {htSelector, "6", htSelector, "54(B)"}},
        {"01 01 02 32 01 02", {"1", "1"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(parsed(c.hex).supportedDataRates, c.rates) << c.hex;
    }
}

TEST(InformationElementParser, BssLoad)
{
    const struct { const char* hex; std::int64_t clients; std::int64_t utilization; } cases[] = {
        {"0B 05 05 00 80 00 00", 5, 51},
        {"0B 05 00 00 00 00 00", 0, 0},
        {"0B 03 02 01 99", 258, 60},
        {"0B 03 00 00 01", 0, 1},
        {"0B 03 00 00 FF", 0, 100},
        {"0B 03 05 00", 5, -1},
        {"0B 01 05", -1, -1},
    };
    for (const auto& c : cases) {
        const scan::ScanedResultInfo r = parsed(c.hex);
        EXPECT_EQ(r.connectedClientCount, c.clients) << c.hex;
        EXPECT_EQ(r.channelUtilization, c.utilization) << c.hex;
    }
}

TEST(InformationElementParser, HtCapabilitiesGuardIntervalAndStreams)
{
    const struct { unsigned char capabilities; const char* mcs; int sgi20; int sgi40; std::int64_t streams; } cases[] = {
        {0x0C, "FF000000", 1, 0, 1}, {0x02, "FFFF0000", 0, 1, 2}, {0x01, "FF00FF00", -1, -1, 2},
        {0x00, "FFFFFFFF", -1, -1, 4},
    };
    for (const auto& c : cases) {
        const QByteArray capabilities = QByteArray::number(c.capabilities, 16).rightJustified(2, '0');
        const scan::ScanedResultInfo r = parsed("2D1A" + capabilities + "0000" + c.mcs + QByteArray(38, '0'));
        EXPECT_EQ(r.shortGIFor24MhzEnabled, c.sgi20) << static_cast<int>(c.capabilities);
        EXPECT_EQ(r.shortGIFor40MhzEnabled, c.sgi40) << static_cast<int>(c.capabilities);
        EXPECT_EQ(r.numberOfStreams, c.streams) << static_cast<int>(c.capabilities);
    }
}

TEST(InformationElementParser, RsnCiphers)
{
    const struct { const char* hex; const char* group; const char* pairwise; } cases[] = {
        {"30 18 0100 000FAC04 0200 000FAC02 000FAC04 0100 000FAC02 0000", "CCMP", "TKIP + CCMP"},
        {"30 0C 0100 00904C04 0100 000FAC04", "Vendor specific", "CCMP"},
        {"30 1A 0100 000FAC04 0300 000FAC04 000FAC02 000FAC01 0100 000FAC02", "CCMP", "CCMP + TKIP"},
        {"30 10 0100 000FAC02 0200 00904C04 000FAC04", "TKIP", "CCMP"},
        {"30 08 0100 000FAC03 0000", "Reserved", ""},
    };
    for (const auto& c : cases) {
        const scan::ScanedResultInfo r = parsed(c.hex);
        EXPECT_EQ(r.groupDataChiperEncryption, QLatin1String(c.group)) << c.hex;
        EXPECT_EQ(r.pairWiseChiperEncryption, QLatin1String(c.pairwise)) << c.hex;
    }
}

TEST(InformationElementParser, HtOperationAndMobilityDomain)
{
    const struct { const char* hex; int width; std::int64_t offset; const char* protection; const char* mobility; } cases[] = {
        {"3D 03 24 05 05 36 03 12 34 01", 40, 1, "Non Member", "Yes (Air)"},
        {"3D 03 24 07 03 36 03 12 35 00", 40, -1, "Non HT Mixed", "Yes (DS)"},
        {"3D 03 24 04 02 36 03 12 01 00", 40, 0, "20 MHz", "Yes (Air)"},
        {"3D 03 24 06 04 36 01 12", 40, 7, "Disabled", "N/A"},
        {"3D 03 24 01 01", 40, 7, "Disabled", "N/A"},
        {"3D 03 24 05 00", 80, 0, "Disabled", "N/A"},
    };
    for (const auto& c : cases) {
        const scan::ScanedResultInfo r = parsed(c.hex, c.width);
        EXPECT_EQ(r.channelOffset, c.offset) << c.hex;
        EXPECT_EQ(r.protectionMode, QLatin1String(c.protection)) << c.hex;
        EXPECT_EQ(r.mobilityDomain, QLatin1String(c.mobility)) << c.hex;
    }
}

TEST(InformationElementParser, AccessPointNamesAndWps)
{
    const QByteArray deviceName = "851A" + QByteArray(18, '0') + "41502D4CE9626279" + QByteArray(16, '0') + "00";
    EXPECT_EQ(parsed(deviceName).apname, QString::fromLatin1("AP-L\xE9" "bby\0\0\0\0\0\0\0\0", 16));
    EXPECT_TRUE(parsed("8518" + QByteArray(48, '0')).apname.isNull());

    EXPECT_EQ(parsed("DD 05 0050F2 04 10").isWPS, 1);
    EXPECT_EQ(parsed("DD 05 0050F2 02 01").isWPS, -1);

    EXPECT_TRUE(parsed("DD 05 000B86 01 03").apname.isEmpty());
    EXPECT_EQ(parsed("DD 0C 000B86 01 03 6C6F6262792D31").apname, QStringLiteral("lobby-1"));
    EXPECT_TRUE(parsed("DD 0C 000B86 01 03 6C6F62").apname.isNull());
}

// Reads run on into the next element; a read past the end stops the walk except in the
// BSS Load, HT Capabilities and device-name handlers, and the end-of-parse steps always run.
TEST(InformationElementParser, ReadsPastTheEnd)
{
    EXPECT_EQ(parsed("30 00 01 04 82").supportedDataRates, QStringList());
    EXPECT_EQ(parsed("2D 00 01 04 82").supportedDataRates, QStringList{"1"});

    const scan::ScanedResultInfo load = parsed("0B 00 01 04 82");
    EXPECT_EQ(load.connectedClientCount, 1025);
    EXPECT_EQ(load.channelUtilization, 51);
    EXPECT_EQ(load.supportedDataRates, QStringList{"1"});

    const scan::ScanedResultInfo caps = parsed("2D 1A 0C 00 00 FF FF");
    EXPECT_EQ(caps.shortGIFor24MhzEnabled, 1);
    EXPECT_EQ(caps.numberOfStreams, 0);

    const scan::ScanedResultInfo rsn = parsed("30 0C 0100 000FAC04 0200 000FAC04");
    EXPECT_EQ(rsn.groupDataChiperEncryption, QStringLiteral("CCMP"));
    EXPECT_TRUE(rsn.pairWiseChiperEncryption.isNull());

    const scan::ScanedResultInfo operation = parsed("3D 02 24 05");
    EXPECT_EQ(operation.channelOffset, 1);
    EXPECT_EQ(operation.protectionMode, QStringLiteral("N/A"));

    scan::ScanedResultInfo empty;
    empty.connectedClientCount = 3;
    empty.protectionMode = QStringLiteral("Disabled");
    empty.parseInformationElement(QByteArray::fromHex("01"));
    EXPECT_EQ(empty.channelUtilization, -1);
    EXPECT_EQ(empty.connectedClientCount, 3);
    EXPECT_EQ(empty.supportedDataRates, QStringList());
    EXPECT_EQ(empty.protectionMode, QStringLiteral("Disabled"));
    EXPECT_EQ(empty.mobilityDomain, QStringLiteral("N/A"));
}

// What the one element walk yields for cut-off, overlong and empty elements: "id:declared:body"
// with a "!" for an element that runs past the end.
TEST(ElementIterator, TruncatedAndOverlongElements)
{
    const struct { const char* hex; std::vector<std::string> elements; } cases[] = {
        {"", {}},
        {"01", {}},
        {"01 00", {"1:0:"}},
        {"01 02 8284 32 01 0c", {"1:2:8284", "50:1:0c"}},
        {"01 04 8284", {"1:4:8284!"}},
        {"01 02 8284 32", {"1:2:8284"}},
        {"dd ff 0050f2", {"221:255:0050f2!"}},
        {"00 00 00 00 03 01", {"0:0:", "0:0:", "3:1:!"}},
    };
    for (const auto& c : cases) {
        const QByteArray bytes = QByteArray::fromHex(c.hex);
        std::vector<std::string> seen;
        for (const scan::Element& e : scan::Elements(bytes)) {
            const QByteArray body(reinterpret_cast<const char*>(e.body.data()), static_cast<qsizetype>(e.body.size()));
            seen.push_back(std::to_string(e.id) + ":" + std::to_string(e.declaredLength) + ":"
                           + body.toHex().toStdString() + (e.complete() ? "" : "!"));
        }
        EXPECT_EQ(seen, c.elements) << c.hex;
    }
}

// Suites come out whole or not at all; a list cut short keeps its leading suites and ends the reading.
TEST(ElementIterator, SuiteListsStopAtTheCut)
{
    const struct { const char* hex; std::vector<int> first; std::vector<int> second; bool firstComplete; } cases[] = {
        {"0100 000fac04 0200 000fac02 000fac04", {4}, {2, 4}, true},
        {"0300 000fac04 000fac02", {4, 2}, {}, false},
        {"0100 000fac", {}, {}, false},
        {"01", {}, {}, false},
        {"0000 0100 0050f201", {}, {1}, true},
        {"ffff 000fac04 000fac08 00", {4, 8}, {}, false},
    };
    for (const auto& c : cases) {
        const QByteArray bytes = QByteArray::fromHex(c.hex);
        scan::SuiteReader reader(scan::ByteReader(bytes), 0);
        std::vector<int> first;
        std::vector<int> second;
        EXPECT_EQ(reader.list([&first](const scan::Suite& s) { first.push_back(s.type); }), c.firstComplete) << c.hex;
        reader.list([&second](const scan::Suite& s) { second.push_back(s.type); });
        EXPECT_EQ(first, c.first) << c.hex;
        EXPECT_EQ(second, c.second) << c.hex;
        EXPECT_FALSE(reader.suite().has_value()) << c.hex;
    }
}

}  // namespace
