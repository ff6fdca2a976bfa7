#include "interface/interface_fields.h"

#include <gtest/gtest.h>

using namespace connection;
using core::InterfaceGeneration;

namespace {

platform::InterfaceSnapshot connectedLink()
{
    platform::InterfaceSnapshot link;
    link.interfaceName = "wlan0";
    link.powerOn = true;
    link.interfaceMode = platform::InterfaceModeStation;
    link.interfaceState = platform::InterfaceStateRunning;
    link.bssid = "2:1b:c:d:e:f";
    link.ssid = "Cafe <b>";
    link.security = platform::SecurityWPA2Personal;
    link.activePHYMode = platform::PhyMode11n;
    link.rssiValue = -55;
    link.noiseMeasurement = -90;
    link.transmitRate = 144.4;
    link.transmitPower = 31;
    link.countryCode = "DE";
    link.wlanChannel = platform::WlanChannel{6, platform::ChannelBand::Band2GHz, platform::ChannelWidthCode::Width40MHz};
    link.supportedPHYModes = platform::PhyB | platform::PhyG | platform::PhyN;
    for (int channel : {11, 1, 6, 6, 36, 1})
        link.supportedWLANChannels.append({channel, {}, {}});
    return link;
}

scan::ScanedResultInfo recordWithElements()
{
    scan::ScanedResultInfo record;
    record.supportedDataRates = QStringList{"6", "9", "54"};
    record.numberOfStreams = 2;
    record.channelOffset = 1;
    record.supportedPHYModes = "b/g/n";
    return record;
}

TEST(InterfaceFields, LaterReleaseTextsOfAConnectedInterface)
{
    const auto link = connectedLink();
    auto record = recordWithElements();
    applyLinkToRecord(link, record);
    EXPECT_EQ(record.channelWidth, 40);
    EXPECT_DOUBLE_EQ(record.channelBond, 2.4);
    EXPECT_EQ(record.channel, "6");

    const auto f = interfaceFields(link, record, sortedSupportedChannels(link), "7", InterfaceGeneration::Later);
    EXPECT_EQ(f.powerSegment, 0);
    EXPECT_TRUE(f.disconnectEnabled);
    EXPECT_EQ(f.opMode, "Infrastructure");
    EXPECT_EQ(f.securityMode, "WPA2 Personal");
    EXPECT_EQ(f.ssid, "Cafe <b>");
    EXPECT_EQ(f.bssid, "02:1B:0C:0D:0E:0F");
    EXPECT_EQ(f.txRate, "144 Mbps");
    EXPECT_EQ(f.rssi, "-55 dBm");
    EXPECT_EQ(f.noise, "-90 dBm");
    EXPECT_EQ(f.txPower, "31 mW");
    EXPECT_EQ(f.countryCode, "DE");
    EXPECT_EQ(f.supportedChannels, "1, 6, 11, 36");
    EXPECT_EQ(f.channel, "6, +1");
    EXPECT_EQ(f.supportedPHYModes, "b/g/n");
    EXPECT_EQ(f.supportedDataRates, "6, 9, 54 Mbps");
    EXPECT_EQ(f.mcsIndex, "7");
    EXPECT_EQ(f.streams, "2");
}

TEST(InterfaceFields, OldestReleaseTextsAndItsChannelListQuirk)
{
    auto link = connectedLink();
    link.supportedWLANChannels = {{1, {}, {}}, {11, {}, {}}, {11, {}, {}}};
    const auto record = recordWithElements();
    const auto f =
        interfaceFields(link, record, sortedSupportedChannels(link), "", InterfaceGeneration::OldestRelease);
    EXPECT_EQ(f.txRate, "144.4 Mbps");
    EXPECT_EQ(f.supportedChannels, "1, 1111");
    EXPECT_EQ(f.supportedPHYModes, "b/g/n");
    EXPECT_EQ(f.mcsIndex, "N/A");
    EXPECT_EQ(f.channel, "6, +1");
    EXPECT_EQ(f.opMode, "");  // the oldest release counts Infrastructure as 0, which shows empty
    link.supportedPHYModes = 0;
    link.interfaceMode = platform::InterfaceModeIBSS;
    const auto none = interfaceFields(link, record, {}, "-1", InterfaceGeneration::OldestRelease);
    EXPECT_EQ(none.supportedPHYModes, "None");
    EXPECT_EQ(none.mcsIndex, "");
    EXPECT_EQ(none.opMode, "IBSS");
}

TEST(InterfaceFields, PowerOffLeavesOnlyTheStaticFields)
{
    for (auto generation : {InterfaceGeneration::Later, InterfaceGeneration::OldestRelease}) {
        auto link = connectedLink();
        link.powerOn = false;
        link.interfaceState = platform::InterfaceStateInactive;
        const auto f = interfaceFields(link, recordWithElements(), sortedSupportedChannels(link), "7", generation);
        EXPECT_EQ(f.powerSegment, 1);
        EXPECT_FALSE(f.disconnectEnabled);
        for (const QString& text : {f.opMode, f.securityMode, f.phyMode, f.ssid, f.bssid, f.txRate, f.rssi, f.noise,
                                    f.txPower, f.countryCode, f.channel, f.supportedPHYModes, f.mcsIndex})
            EXPECT_TRUE(text.isEmpty()) << text.toStdString();
        EXPECT_FALSE(f.supportedChannels.isEmpty());
        EXPECT_EQ(f.supportedDataRates, "6, 9, 54 Mbps");
        EXPECT_EQ(f.streams, "2");
    }
}

TEST(InterfaceFields, LaterReleaseSubstitutesNoiseAndHidesLinkFieldsWithoutBssid)
{
    EXPECT_EQ(displayedNoise(0, 2.4), -92);
    EXPECT_EQ(displayedNoise(0, 5.0), -94);
    EXPECT_EQ(displayedNoise(0, 3.0), 0);
    EXPECT_EQ(displayedNoise(-97, 5.0), -97);

    auto link = connectedLink();
    link.noiseMeasurement = 0;
    link.wlanChannel->channelBand = platform::ChannelBand::Band5GHz;
    link.security = static_cast<int>(0xFFFFFFFFu);
    scan::ScanedResultInfo record = recordWithElements();
    record.channelOffset = -1;
    applyLinkToRecord(link, record);
    auto f = interfaceFields(link, record, {}, "", InterfaceGeneration::Later);
    EXPECT_EQ(f.noise, "-94 dBm");
    EXPECT_EQ(f.securityMode, "");
    EXPECT_EQ(f.channel, "6");
    EXPECT_EQ(f.mcsIndex, "N/A");

    link.bssid.clear();
    f = interfaceFields(link, record, {}, "3", InterfaceGeneration::Later);
    for (const QString& text : {f.bssid, f.noise, f.txPower, f.channel, f.supportedPHYModes, f.mcsIndex})
        EXPECT_TRUE(text.isEmpty()) << text.toStdString();
    EXPECT_EQ(f.rssi, "-55 dBm");
}

TEST(ToolOutput, McsIsSearchedFromTheLastLineBackToTheSecond)
{
    EXPECT_EQ(mcsIndexFromToolOutput("     agrCtlRSSI: -50\n            MCS: 7\n    channel: 6\n"), "7");
    EXPECT_EQ(mcsIndexFromToolOutput("MCS: 9\nchannel: 6\n"), std::nullopt);
    EXPECT_EQ(mcsIndexFromToolOutput("a\nMCS: 1\n\nlast MCS: 15 : x\n"), "15 : x");
    EXPECT_EQ(mcsIndexFromToolOutput(""), std::nullopt);
}

} // namespace
