#include "scan/ieee_ie_frame_utils.h"
#include "scan/scaned_result_info.h"
#include "scan/scanner_utils.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

const QString htSelector =
    QStringLiteral("BSS requires support for mandatory features of HT PHY (IEEE 802.11 - Clause 20)");

scan::ScanedResultInfo network(int width, std::int64_t streams, std::int8_t sgi20, std::int8_t sgi40,
                         const QStringList& rates = {})
{
    scan::ScanedResultInfo record;
    record.channelWidth = width;
    record.numberOfStreams = streams;
    record.shortGIFor24MhzEnabled = sgi20;
    record.shortGIFor40MhzEnabled = sgi40;
    record.supportedDataRates = rates;
    return record;
}

TEST(DataRates, RateByteTexts)
{
    const struct { const char* hex; QString text; } cases[] = {
        {"1B", "13.5"}, {"EC", "54(B)"}, {"FF", htSelector}, {"07", QString()}, {"6c", QString()}, {"6C0", QString()},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(scan::IEEE_IE_FrameUtils::getBitRate(QLatin1String(c.hex)), c.text) << c.hex;
    }
}

TEST(DataRates, ComputedRatesFollowWidthStreamsAndGuardInterval)
{
    const QStringList shortGI20 = {"7.2", "14.4", "21.6", "28.8", "43.2", "57.6", "64.8", "72"};
    const QStringList longGI20 = {"6.5", "13", "19.4", "25.9", "38.9", "51.8", "58.3", "64.8"};
    const struct { int width; std::int64_t streams; std::int8_t sgi20; std::int8_t sgi40; QStringList rates; } cases[] = {
        {20, 1, 1, 0, shortGI20},
        {20, 1, -1, 0, shortGI20},
        {20, 1, 0, 1, longGI20},
        {10, 1, 1, 1, longGI20},
        {40, 1, 1, 0, {"13.5", "27", "40.5", "54", "81", "108", "121.5", "135"}},
        {80, 3, 0, 1, {"32.5", "65", "97.5", "130", "195", "260", "292.5", "325", "390", "433.3",
                       "520", "585", "650", "780", "866.7", "877.5", "975", "1170", "1300"}},
        {20, 0, 1, 1, {}},
    };
    for (const auto& c : cases) {
        scan::ScanedResultInfo r = network(c.width, c.streams, c.sgi20, c.sgi40);
        r.populateMaxDataRate();
        EXPECT_EQ(r.supportedDataRates, c.rates) << c.width << " MHz, " << c.streams << " streams";
    }

    scan::ScanedResultInfo threeStreams160 = network(160, 3, 0, 1);
    EXPECT_EQ(threeStreams160.getMaxDataRate(), QStringLiteral("2340"));
    EXPECT_FALSE(threeStreams160.supportedDataRates->contains(QStringLiteral("2600")));
}

TEST(DataRates, MergeSortAndMaximum)
{
    scan::ScanedResultInfo legacyOnly = network(20, 0, 1, 1, {"11", "5.5", htSelector, "2", "1(B)", "5", "54(B)"});
    EXPECT_EQ(legacyOnly.getMaxDataRate(), QStringLiteral("54(B)"));
    EXPECT_EQ(legacyOnly.supportedDataRates, (QStringList{htSelector, "1(B)", "2", "5.5", "5", "11", "54(B)"}));

    scan::ScanedResultInfo merged = network(20, 1, 0, 0, {"54", "13", "1(B)"});
    merged.populateMaxDataRate();
    const QStringList expected = {"1(B)", "6.5", "13", "19.4", "25.9", "38.9", "51.8", "54", "58.3", "64.8"};
    EXPECT_EQ(merged.supportedDataRates, expected);
    merged.populateMaxDataRate();
    EXPECT_EQ(merged.supportedDataRates, expected);

    scan::ScanedResultInfo absent = network(40, 2, 1, 1);
    absent.supportedDataRates.reset();
    EXPECT_EQ(absent.getMaxDataRate(), QString());
    EXPECT_EQ(absent.supportedDataRates, QStringList());

    scan::ScanedResultInfo r = network(20, 1, 1, 1);
    EXPECT_EQ(r.getMaxDataRate(), QStringLiteral("72"));
    r.channelWidth = 80;
    r.numberOfStreams = 3;
    EXPECT_EQ(r.getMaxDataRate(), QStringLiteral("72"));
    r.maxDataRate = QStringLiteral("-1");
    EXPECT_EQ(r.getMaxDataRate(), QStringLiteral("1300"));
}

TEST(DataRates, McsIndexOfTransmitRate)
{
    const struct { double rate; int width; std::int8_t sgi20; std::int8_t sgi40; int mcs; } cases[] = {
        {72.2, 20, 1, 0, 7}, {144.4, 20, 1, 0, 15}, {65.0, 20, 0, 1, 7}, {0.0, 20, 1, 1, 0},
        {135.0, 40, 1, 0, 7}, {65.0, 10, 1, 1, 7}, {292.5, 80, 0, 1, 9}, {866.7, 80, 0, 1, 11},
        {433.3, 80, 0, 1, 0}, {1300.0, 160, 0, 1, 5}, {1e30, 20, 1, 1, 0},
    };
    for (const auto& c : cases) {
        const scan::ScanedResultInfo info = network(c.width, 1, c.sgi20, c.sgi40);
        EXPECT_EQ(scan::ScannerUtils::getMCSIndexUsingTXRate(c.rate, c.width, info), c.mcs) << c.rate << " at " << c.width;
    }
}

}  // namespace
