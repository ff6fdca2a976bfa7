#include "core/memory_settings.h"
#include "scan/record_builder.h"
#include "scan/scanner_utils.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// HT Capabilities with the receive-MCS byte of each stream set.
QByteArray htCapabilities(int streams)
{
    QByteArray ie(28, '\0');
    ie[0] = 45;
    ie[1] = 26;
    for (int i = 0; i < streams; ++i)
        ie[5 + i] = static_cast<char>(0xff);
    return ie;
}

// HT Operation whose second byte carries the secondary-channel offset bits.
QByteArray htOperation(char offsetBits) { return QByteArray::fromHex("3d0624") + offsetBits + QByteArray(4, '\0'); }

const QString bssid = QStringLiteral("AA:BB:CC:00:00:01");

class RecordBuilderTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir_.isValid());
        QFile oui(dir_.filePath(QStringLiteral("oui.txt")));
        ASSERT_TRUE(oui.open(QIODevice::WriteOnly));
        oui.write("AA:BB:CC\tAcme Corp # test vendor\n");
        oui.close();
        scan::ScannerUtils::loadOuiFrom(oui.fileName());
    }

    static scan::StoredObservation row(double band, int rssi, int noise, const char* phy = "a/n/ac")
    {
        scan::StoredObservation r;
        r.bssid = bssid;
        r.originalChannel = 36;
        r.phyModes = QLatin1String(phy);
        r.rssi = rssi;
        r.noise = noise;
        r.securityMode = 3;
        r.channelBond = band;
        return r;
    }

    static std::shared_ptr<platform::ScanResult> network(const QByteArray& elements, platform::ChannelWidthCode width)
    {
        auto n = std::make_shared<platform::ScanResult>();
        n->informationElementData = elements;
        n->channelWidth = width;
        n->countryCode = QStringLiteral("DE");
        return n;
    }

    QTemporaryDir dir_;
    core::MemorySettings settings_;
};

} // namespace

TEST_F(RecordBuilderTest, NoiseDefaultsToTheBandFloorAndSnrNeverGoesNegative)
{
    struct Case { double band; int rssi; int noise; int expectedNoise; int expectedSnr; };
    const Case cases[] = {{5.0, -60, 0, -94, 34}, {2.4, -60, 0, -92, 32}, {0.0, -60, 0, -92, 32},
                          {5.0, -60, -90, -90, 30}, {2.4, -95, 0, -92, 0}, {3.0, -60, 0, 0, 0}};
    for (const Case& c : cases) {
        const scan::ScanedResultInfo record = scan::buildRecord(row(c.band, c.rssi, c.noise), nullptr, core::InterfaceGeneration::Later, settings_);
        EXPECT_EQ(record.noise, c.expectedNoise) << c.band << " " << c.noise;
        EXPECT_EQ(record.singnalToNoise, c.expectedSnr) << c.band << " " << c.rssi;
    }
}

TEST_F(RecordBuilderTest, WidthOffsetAndStreamsOnBothInterfaceGenerations)
{
    using W = platform::ChannelWidthCode;
    struct Case { bool oldest; QByteArray elements; W code; const char* phy; int width; std::int64_t offset; std::int64_t streams; };
    const Case cases[] = {
        {false, htOperation(0x05), W::Width20MHz, "a/n", 20, 1, 1},
        {false, htCapabilities(2) + htOperation(0x07), W::Width40MHz, "a/n", 40, -1, 2},
        {false, htCapabilities(3) + htOperation(0x05), W::Width40MHz, "a/n", 40, 1, 3},
        {false, htCapabilities(3) + htOperation(0x05), W::Width40MHz, "a/n/ac", 80, 0, 3},
        {false, htCapabilities(2) + htOperation(0x05), W::Width40MHz, "a/n/ac", 40, 1, 2},
        {false, htOperation(0x07), W::Width160MHz, "a/n/ac", 160, 0, 1},
        {false, QByteArray(), W::Unknown, "a", 0, 0, 1},
        // The oldest generation ignores the reported width and reads the HT offset instead.
        {true, QByteArray(), W::Width160MHz, "a/n", 20, 0, 1},
        {true, htOperation(0x07), W::Width20MHz, "a/n", 40, -1, 1},
        {true, htCapabilities(3) + htOperation(0x05), W::Width20MHz, "a/n/ac", 80, 0, 3},
    };
    const QHash<QString, QString> texts{{bssid, QStringLiteral("from the listing")}};
    for (const Case& c : cases) {
        const auto generation = c.oldest ? core::InterfaceGeneration::OldestRelease : core::InterfaceGeneration::Later;
        const scan::ScanedResultInfo record =
            scan::buildRecord(row(5.0, -50, -90, c.phy), network(c.elements, c.code), generation, settings_, &texts);
        const std::string label = c.elements.toHex().toStdString() + " " + c.phy + (c.oldest ? " oldest" : "");
        EXPECT_EQ(record.channelWidth, c.width) << label;
        EXPECT_EQ(record.channelOffset, c.offset) << label;
        EXPECT_EQ(record.numberOfStreams, c.streams) << label;
        EXPECT_EQ(record.cc, c.oldest ? QStringLiteral("N/A") : QStringLiteral("DE"));
        EXPECT_EQ(record.securityModeString, c.oldest ? scan::ScannerUtils::stringForSecurityMode(3, generation) : texts.value(bssid));
    }
}

TEST_F(RecordBuilderTest, IdentityVendorTagAndChannelText)
{
    settings_.setValue(bssid, QStringLiteral("Office"));
    scan::StoredObservation r = row(5.0, -50, -90);
    scan::ScanedResultInfo record = scan::buildRecord(r, nullptr, core::InterfaceGeneration::Later, settings_);
    EXPECT_EQ(record.channel, QStringLiteral("36"));
    EXPECT_EQ(record.vendorName, QStringLiteral("Acme Corp"));
    EXPECT_EQ(record.bssidTag, QStringLiteral("Office"));
    // Without a live scan result the element rules still run as for an empty byte string.
    EXPECT_EQ(record.channelUtilization, -1);
    EXPECT_EQ(record.supportedDataRates, std::optional<QStringList>(QStringList()));
    EXPECT_EQ(record.protectionMode, QStringLiteral("N/A"));

    r.bssid = QStringLiteral("11:22:33:44:55:66");
    r.channel = QStringLiteral("36,+1");
    record = scan::buildRecord(r, nullptr, core::InterfaceGeneration::Later, settings_);
    EXPECT_EQ(record.channel, QStringLiteral("36,+1"));
    EXPECT_EQ(record.vendorName, QStringLiteral("Unknown"));
    EXPECT_EQ(record.bssidTag, QStringLiteral(""));
    EXPECT_FALSE(record.bssidTag.isNull());
}

TEST(ScanedResultInfo, CopyCarriesOnlyElementFieldsAndResetClearsThem)
{
    scan::ScanedResultInfo source;
    source.bssid = bssid;
    source.rssi = -40;
    source.lastSeen = QDateTime::currentDateTime();
    source.maxDataRate = QStringLiteral("54");
    source.supportedDataRates = QStringList{QStringLiteral("54")};

    scan::ScanedResultInfo copy = source.copy();
    EXPECT_TRUE(copy.bssid.isNull() && copy.rssi == 0 && !copy.lastSeen.isValid());
    EXPECT_EQ(copy.maxDataRate, source.maxDataRate);
    EXPECT_EQ(copy.supportedDataRates, source.supportedDataRates);

    copy.resetInformationElementInformation();
    EXPECT_TRUE(copy.isWPS == -1 && copy.connectedClientCount == -1 && copy.maxDataRate.isNull());
    EXPECT_EQ(copy.supportedDataRates, std::optional<QStringList>(QStringList()));
}
