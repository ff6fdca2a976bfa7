#include "platform/sim/beacon_elements.h"
#include "platform/sim/element_builder.h"
#include "scan/scan_result_derivation.h"
#include "scan/scaned_result_info.h"


#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace platform;
using namespace platform::sim;

SimulatedAccessPoint accessPoint(int channel, int widthMhz, SecurityKind security, bool legacyOnly = false,
                                 bool fastRoaming = false)
{
    SimulatedAccessPoint ap;
    ap.bssid = QStringLiteral("3c:a6:2f:10:20:30");
    ap.ssid = "Test Net";
    ap.channel = channel;
    ap.frequencyMhz = channel <= 14 ? 2407 + 5 * channel : 5000 + 5 * channel;
    ap.widthMhz = widthMhz;
    ap.security = security;
    ap.vhtCapable = channel > 14 && widthMhz >= 80;
    ap.legacyOnly = legacyOnly;
    ap.fastRoaming = fastRoaming;
    return ap;
}

ScanResult derived(SimulatedAccessPoint ap)
{
    buildBeacon(ap);
    scan::RawBssFacts facts;
    facts.bssid = ap.bssid;
    facts.frequencyMhz = ap.frequencyMhz;
    facts.capabilityInfo = ap.capabilityInfo;
    facts.informationElements = ap.beaconElements;
    return scan::deriveScanResult(facts);
}

class ElementDecoding : public ::testing::Test {
protected:
    static scan::ScanedResultInfo parsed(SimulatedAccessPoint ap)
    {
        buildBeacon(ap);
        scan::ScanedResultInfo record;
        record.bssid = ap.bssid;
        record.parseInformationElement(ap.beaconElements);
        return record;
    }
};

TEST_F(ElementDecoding, BeaconsDeriveTheIntendedChannelWidthSecurityAndPhy)
{
    using W = ChannelWidthCode;
    const std::uint32_t bgn = PhyB | PhyG | PhyN, anac = PhyA | PhyN | PhyAC;
    const struct { const char* name; SimulatedAccessPoint ap; W width; int security; std::uint32_t phy; } cases[] = {
        {"2.4 GHz WPA2", accessPoint(6, 20, SecurityKind::Wpa2), W::Width20MHz, SecurityWPA2Personal, bgn},
        {"2.4 GHz 40 below, open", accessPoint(11, 40, SecurityKind::Open), W::Width40MHz, SecurityNone, bgn},
        {"80 MHz SAE", accessPoint(40, 80, SecurityKind::Wpa3), W::Width80MHz, SecurityPersonal, anac},
        {"160 MHz upper half, enterprise with FT", accessPoint(120, 160, SecurityKind::Wpa2Enterprise, false, true),
         W::Width160MHz, SecurityWPA2Enterprise, anac},
        {"5 GHz 40 MHz HT only", accessPoint(157, 40, SecurityKind::WpaWpa2Mixed), W::Width40MHz,
         SecurityWPAPersonalMixed, PhyA | PhyN},
        {"legacy 11a WEP on DFS, channel from frequency", accessPoint(52, 20, SecurityKind::Wep, true), W::Width20MHz,
         SecurityWEP, PhyA},
        {"legacy WPA", accessPoint(9, 20, SecurityKind::Wpa, true), W::Width20MHz, SecurityWPAPersonal, PhyB | PhyG},
    };
    for (const auto& c : cases) {
        const ScanResult result = derived(c.ap);
        EXPECT_EQ(result.channelNumber, c.ap.channel) << c.name;
        EXPECT_EQ(result.channelWidth, c.width) << c.name;
        EXPECT_EQ(result.securityMode, c.security) << c.name;
        EXPECT_EQ(result.phyModes, c.phy) << c.name;
        EXPECT_EQ(result.countryCode, QStringLiteral("DE")) << c.name;
        EXPECT_EQ(result.ssid, QStringLiteral("Test Net")) << c.name;
    }
}

TEST_F(ElementDecoding, ParserReadsLoadWpsNamesRoamingAndStreams)
{
    SimulatedAccessPoint ciscoAp = accessPoint(36, 80, SecurityKind::Wpa2Enterprise, false, true);
    ciscoAp.announcesLoad = true;
    ciscoAp.baseStationCount = 300;
    ciscoAp.baseUtilization255 = 128;
    ciscoAp.mobilityDomainId = 0x1234;
    ciscoAp.apNameKind = ApNameKind::DeviceNameElement;
    ciscoAp.apName = "CORP-AP-1";
    ciscoAp.spatialStreams = 3;

    SimulatedAccessPoint arubaAp = accessPoint(6, 20, SecurityKind::Wpa2);
    arubaAp.wps = true;
    arubaAp.apNameKind = ApNameKind::VendorElement;
    arubaAp.apName = "lab-ap-2";
    arubaAp.spatialStreams = 1;

    const scan::ScanedResultInfo cisco = parsed(ciscoAp);
    EXPECT_EQ(cisco.connectedClientCount, 300);
    EXPECT_EQ(cisco.channelUtilization, 51);  // 128 of 255, rounded up
    EXPECT_TRUE(cisco.mobilityDomain.startsWith(QStringLiteral("Yes")));
    EXPECT_EQ(cisco.apname, QString::fromLatin1(QByteArray("CORP-AP-1").leftJustified(16, '\0')));
    EXPECT_EQ(cisco.numberOfStreams, 3);
    EXPECT_EQ(cisco.isWPS, 0);
    EXPECT_EQ(cisco.pairWiseChiperEncryption, QStringLiteral("CCMP"));

    const scan::ScanedResultInfo aruba = parsed(arubaAp);
    EXPECT_EQ(aruba.isWPS, 1);
    EXPECT_EQ(aruba.apname, QStringLiteral("lab-ap-2"));
    EXPECT_EQ(aruba.mobilityDomain, QStringLiteral("N/A"));
    EXPECT_EQ(aruba.channelUtilization, -1);
    EXPECT_EQ(aruba.numberOfStreams, 1);
}

TEST(ElementBuilder, LoadPatchChangesOnlyTheLoadBytes)
{
    ElementBuilder builder;
    builder.ssid("x").bssLoad(5, 10, 0).dsParameterSet(3);
    QByteArray bytes = builder.bytes();
    const QByteArray before = bytes;
    ElementBuilder::patchBssLoad(bytes, builder.bssLoadOffset(), 0x0102, 200);
    EXPECT_EQ(bytes.size(), before.size());
    EXPECT_EQ(bytes.mid(builder.bssLoadOffset(), 3), QByteArray("\x02\x01\xC8", 3));
    EXPECT_EQ(bytes.left(builder.bssLoadOffset()), before.left(builder.bssLoadOffset()));
    EXPECT_EQ(bytes.mid(builder.bssLoadOffset() + 3), before.mid(builder.bssLoadOffset() + 3));
    // An offset from another beacon must not write past the end.
    ElementBuilder::patchBssLoad(bytes, bytes.size() - 1, 1, 1);
    EXPECT_EQ(bytes.size(), before.size());
}

} // namespace
