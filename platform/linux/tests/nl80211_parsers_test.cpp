#include "platform/linux/linux_wireless_client.h"
#include "platform/linux/nl80211_parsers.h"
#include "platform/linux/nl80211_socket.h"
#include "platform/linux/scan_completion.h"

#include <QCoreApplication>

#include <gtest/gtest.h>
#include <linux/nl80211.h>
#include <netlink/attr.h>
#include <netlink/genl/genl.h>
#include <netlink/msg.h>

#include <functional>

namespace {

using platform::ChannelBand;
using platform::ChannelWidthCode;

// A reply as the kernel would send it, built with libnl itself.
class Reply {
public:
    explicit Reply(std::uint8_t command) : message_(nlmsg_alloc())
    {
        genlmsg_put(message_, NL_AUTO_PORT, NL_AUTO_SEQ, 0x1c, 0, NLM_F_MULTI, command, 0);
    }
    ~Reply() { nlmsg_free(message_); }
    Reply(const Reply&) = delete;
    Reply& operator=(const Reply&) = delete;

    operator nl_msg*() const { return message_; }
    Reply& u8(int type, std::uint8_t value) { nla_put_u8(message_, type, value); return *this; }
    Reply& u16(int type, std::uint16_t value) { nla_put_u16(message_, type, value); return *this; }
    Reply& u32(int type, std::uint32_t value) { nla_put_u32(message_, type, value); return *this; }
    Reply& flag(int type) { nla_put_flag(message_, type); return *this; }
    Reply& bytes(int type, const QByteArray& value)
    {
        nla_put(message_, type, static_cast<int>(value.size()), value.constData());
        return *this;
    }
    Reply& nest(int type, const std::function<void(Reply&)>& inside)
    {
        nlattr* start = nla_nest_start(message_, type);
        inside(*this);
        nla_nest_end(message_, start);
        return *this;
    }

private:
    nl_msg* message_;
};

const QByteArray bssidA = QByteArray::fromHex("001122334455");
const QByteArray bssidB = QByteArray::fromHex("66778899aabb");

QByteArray ssidElement(const QByteArray& ssid) { return QByteArray(1, '\0') + char(ssid.size()) + ssid; }

TEST(Nl80211Interface, DecodesStateChannelAndSignedPower)
{
    Reply reply(NL80211_CMD_NEW_INTERFACE);
    reply.u32(NL80211_ATTR_IFINDEX, 3)
        .bytes(NL80211_ATTR_IFNAME, QByteArray("wlan0", 6))
        .u32(NL80211_ATTR_WIPHY, 1)
        .u32(NL80211_ATTR_IFTYPE, NL80211_IFTYPE_STATION)
        .bytes(NL80211_ATTR_MAC, bssidB)
        .u32(NL80211_ATTR_WIPHY_FREQ, 5180)
        .u32(NL80211_ATTR_CHANNEL_WIDTH, NL80211_CHAN_WIDTH_80)
        .u32(NL80211_ATTR_CENTER_FREQ1, 5210)
        .u32(NL80211_ATTR_WIPHY_TX_POWER_LEVEL, 2000)
        .bytes(NL80211_ATTR_SSID, "Cafe");
    const auto info = platform::nl80211::parseInterface(reply);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->name, "wlan0");
    EXPECT_EQ(info->macAddress, "66:77:88:99:aa:bb");
    EXPECT_EQ(info->ssid, "Cafe");
    EXPECT_EQ(platform::nl80211::milliwattsFromMbm(*info->txPowerMbm), 100);
    const auto channel = platform::nl80211::channelOf(*info);
    ASSERT_TRUE(channel);
    EXPECT_EQ(*channel, (platform::WlanChannel{36, ChannelBand::Band5GHz, ChannelWidthCode::Width80MHz}));

    Reply lowPower(NL80211_CMD_NEW_INTERFACE);
    lowPower.u32(NL80211_ATTR_IFINDEX, 3).u32(NL80211_ATTR_WIPHY_TX_POWER_LEVEL, static_cast<std::uint32_t>(-300));
    EXPECT_EQ(platform::nl80211::parseInterface(lowPower)->txPowerMbm, -300);

    // A wireless device without a network device (P2P device) has no interface index.
    Reply deviceOnly(NL80211_CMD_NEW_INTERFACE);
    deviceOnly.u32(NL80211_ATTR_IFTYPE, NL80211_IFTYPE_P2P_DEVICE);
    EXPECT_FALSE(platform::nl80211::parseInterface(deviceOnly));
}

struct RateCase {
    const char* name;
    std::function<void(Reply&)> rate;
    std::optional<int> bitrate;
    std::optional<int> mcs;
    std::optional<int> streams;
    std::optional<bool> shortGi;
    int widthMhz;
};

TEST(Nl80211Station, DecodesSignalAndTransmitRate)
{
    const std::vector<RateCase> cases = {
        {"HT two streams", [](Reply& r) {
             r.u16(NL80211_RATE_INFO_BITRATE, 3000).u8(NL80211_RATE_INFO_MCS, 15)
                 .flag(NL80211_RATE_INFO_40_MHZ_WIDTH).flag(NL80211_RATE_INFO_SHORT_GI);
         }, 3000, 15, 2, true, 40},
        {"VHT", [](Reply& r) {
             r.u32(NL80211_RATE_INFO_BITRATE32, 8667).u16(NL80211_RATE_INFO_BITRATE, 8667)
                 .u8(NL80211_RATE_INFO_VHT_MCS, 9).u8(NL80211_RATE_INFO_VHT_NSS, 2)
                 .flag(NL80211_RATE_INFO_80_MHZ_WIDTH);
         }, 8667, 9, 2, false, 80},
        {"HE beats the HT index", [](Reply& r) {
             r.u32(NL80211_RATE_INFO_BITRATE32, 24019).u8(NL80211_RATE_INFO_MCS, 7)
                 .u8(NL80211_RATE_INFO_HE_MCS, 11).u8(NL80211_RATE_INFO_HE_NSS, 2)
                 .u8(NL80211_RATE_INFO_HE_GI, NL80211_RATE_INFO_HE_GI_0_8)
                 .flag(NL80211_RATE_INFO_160_MHZ_WIDTH);
         }, 24019, 11, 2, true, 160},
        {"legacy has no MCS", [](Reply& r) { r.u16(NL80211_RATE_INFO_BITRATE, 540); },
         540, std::nullopt, std::nullopt, std::nullopt, 20},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Reply reply(NL80211_CMD_NEW_STATION);
        reply.u32(NL80211_ATTR_IFINDEX, 3).bytes(NL80211_ATTR_MAC, bssidA).nest(NL80211_ATTR_STA_INFO, [&](Reply& r) {
            r.u8(NL80211_STA_INFO_SIGNAL, static_cast<std::uint8_t>(-61));
            r.nest(NL80211_STA_INFO_TX_BITRATE, c.rate);
        });
        const auto station = platform::nl80211::parseStation(reply);
        ASSERT_TRUE(station);
        EXPECT_EQ(station->macAddress, "00:11:22:33:44:55");
        EXPECT_EQ(station->signalDbm, -61);
        ASSERT_TRUE(station->txRate);
        EXPECT_EQ(station->txRate->bitrate100Kbps, c.bitrate);
        EXPECT_EQ(station->txRate->mcs, c.mcs);
        EXPECT_EQ(station->txRate->spatialStreams, c.streams);
        EXPECT_EQ(station->txRate->shortGuardInterval, c.shortGi);
        EXPECT_EQ(station->txRate->widthMhz, c.widthMhz);
    }
}

TEST(Nl80211Survey, NoiseIsSignedAndAbsentMeansUnknown)
{
    Reply inUse(NL80211_CMD_NEW_SURVEY_RESULTS);
    inUse.nest(NL80211_ATTR_SURVEY_INFO, [](Reply& r) {
        r.u32(NL80211_SURVEY_INFO_FREQUENCY, 2437).u8(NL80211_SURVEY_INFO_NOISE, static_cast<std::uint8_t>(-95))
            .flag(NL80211_SURVEY_INFO_IN_USE);
    });
    const auto entry = platform::nl80211::parseSurvey(inUse);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->frequencyMhz, 2437);
    EXPECT_EQ(entry->noiseDbm, -95);
    EXPECT_TRUE(entry->inUse);

    Reply silent(NL80211_CMD_NEW_SURVEY_RESULTS);
    silent.nest(NL80211_ATTR_SURVEY_INFO, [](Reply& r) { r.u32(NL80211_SURVEY_INFO_FREQUENCY, 5180); });
    EXPECT_EQ(platform::nl80211::parseSurvey(silent)->noiseDbm, std::nullopt);
    EXPECT_FALSE(platform::nl80211::parseSurvey(silent)->inUse);
}

TEST(Nl80211Regulatory, ReadsCountryOnlyWhenWellFormed)
{
    Reply reply(NL80211_CMD_GET_REG);
    reply.bytes(NL80211_ATTR_REG_ALPHA2, QByteArray("DE", 3)).u32(NL80211_ATTR_WIPHY, 0);
    EXPECT_EQ(platform::nl80211::parseRegulatory(reply)->alpha2, "DE");
    Reply truncated(NL80211_CMD_GET_REG);
    truncated.bytes(NL80211_ATTR_REG_ALPHA2, QByteArray("D"));
    EXPECT_FALSE(platform::nl80211::parseRegulatory(truncated));
}

void frequency(Reply& r, int index, std::uint32_t mhz, bool disabled = false)
{
    r.nest(index, [&](Reply& f) {
        f.u32(NL80211_FREQUENCY_ATTR_FREQ, mhz);
        if (disabled)
            f.flag(NL80211_FREQUENCY_ATTR_DISABLED);
    });
}

void rates(Reply& r, std::initializer_list<std::uint32_t> values)
{
    r.nest(NL80211_BAND_ATTR_RATES, [&](Reply& list) {
        int index = 0;
        for (const auto value : values)
            list.nest(index++, [&](Reply& rate) { rate.u32(NL80211_BITRATE_ATTR_RATE, value); });
    });
}

TEST(Nl80211Wiphy, MergesSplitDumpIntoChannelsAndModes)
{
    Reply first(NL80211_CMD_NEW_WIPHY);
    first.u32(NL80211_ATTR_WIPHY, 0).bytes(NL80211_ATTR_WIPHY_NAME, QByteArray("phy0", 5))
        .nest(NL80211_ATTR_SUPPORTED_IFTYPES, [](Reply& r) { r.flag(NL80211_IFTYPE_STATION).flag(NL80211_IFTYPE_AP); })
        .nest(NL80211_ATTR_WIPHY_BANDS, [](Reply& r) {
            r.nest(NL80211_BAND_2GHZ, [](Reply& band) {
                band.nest(NL80211_BAND_ATTR_FREQS, [](Reply& f) {
                    frequency(f, 0, 2412);
                    frequency(f, 1, 2472);
                    frequency(f, 2, 2484, true);
                });
            });
        });
    // The same band continues in the next message with its rates; then the 5 and 6 GHz bands.
    Reply second(NL80211_CMD_NEW_WIPHY);
    second.u32(NL80211_ATTR_WIPHY, 0).nest(NL80211_ATTR_WIPHY_BANDS, [](Reply& r) {
        r.nest(NL80211_BAND_2GHZ, [](Reply& band) {
            rates(band, {10, 20, 55, 110, 60, 540});
            band.u16(NL80211_BAND_ATTR_HT_CAPA, 0x1ff);
        });
        r.nest(NL80211_BAND_5GHZ, [](Reply& band) {
            band.nest(NL80211_BAND_ATTR_FREQS, [](Reply& f) {
                frequency(f, 0, 5180);
                frequency(f, 1, 5600, true);
                frequency(f, 2, 5260);
            });
            band.u32(NL80211_BAND_ATTR_VHT_CAPA, 0x3380);
        });
        r.nest(NL80211_BAND_6GHZ, [](Reply& band) {
            band.nest(NL80211_BAND_ATTR_FREQS, [](Reply& f) { frequency(f, 0, 5955); });
        });
    });
    Reply otherRadio(NL80211_CMD_NEW_WIPHY);
    otherRadio.u32(NL80211_ATTR_WIPHY, 1).nest(NL80211_ATTR_SUPPORTED_IFTYPES,
                                                [](Reply& r) { r.flag(NL80211_IFTYPE_MONITOR); });

    platform::nl80211::WiphyCollector collector;
    collector.add(first);
    collector.add(second);
    collector.add(otherRadio);
    const auto wiphys = collector.wiphys();
    ASSERT_EQ(wiphys.size(), 2);
    const auto& phy = wiphys[0];
    EXPECT_EQ(phy.name, "phy0");
    EXPECT_TRUE(phy.supportsStation);
    EXPECT_FALSE(wiphys[1].supportsStation);
    const QList<platform::WlanChannel> expected = {
        {1, ChannelBand::Band2GHz, ChannelWidthCode::Width20MHz},
        {13, ChannelBand::Band2GHz, ChannelWidthCode::Width20MHz},
        {36, ChannelBand::Band5GHz, ChannelWidthCode::Width20MHz},
        {52, ChannelBand::Band5GHz, ChannelWidthCode::Width20MHz},
    };
    EXPECT_EQ(phy.channels, expected);
    EXPECT_EQ(phy.phyModes2GHz, platform::PhyB | platform::PhyG | platform::PhyN);
    // HT capabilities were announced for 2.4 GHz only, so 5 GHz has a and ac but not n.
    EXPECT_EQ(phy.phyModes5GHz, platform::PhyA | platform::PhyAC);

    platform::ScanResult accessPoint;
    accessPoint.channelBand = ChannelBand::Band5GHz;
    accessPoint.phyModes = platform::PhyA | platform::PhyN | platform::PhyAC;
    EXPECT_EQ(platform::nl80211::activePhyMode(phy, accessPoint), platform::PhyMode11ac);
    accessPoint.channelBand = ChannelBand::Band2GHz;
    accessPoint.phyModes = platform::PhyB | platform::PhyG;
    EXPECT_EQ(platform::nl80211::activePhyMode(phy, accessPoint), platform::PhyMode11g);
}

std::optional<platform::nl80211::ScanEntry> scanEntry(const std::function<void(Reply&)>& bss)
{
    Reply reply(NL80211_CMD_NEW_SCAN_RESULTS);
    reply.u32(NL80211_ATTR_IFINDEX, 3).nest(NL80211_ATTR_BSS, bss);
    return platform::nl80211::parseScanEntry(reply);
}

TEST(Nl80211Scan, DecodesEntriesIntoRawFacts)
{
    const auto entry = scanEntry([](Reply& r) {
        r.bytes(NL80211_BSS_BSSID, bssidA).u32(NL80211_BSS_FREQUENCY, 5180)
            .u32(NL80211_BSS_SIGNAL_MBM, static_cast<std::uint32_t>(-6750)).u16(NL80211_BSS_CAPABILITY, 0x0012)
            .bytes(NL80211_BSS_INFORMATION_ELEMENTS, ssidElement("probe"))
            .bytes(NL80211_BSS_BEACON_IES, ssidElement("beacon")).u32(NL80211_BSS_STATUS, NL80211_BSS_STATUS_ASSOCIATED);
    });
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->facts.bssid, "00:11:22:33:44:55");
    EXPECT_EQ(entry->facts.signalDbm, -67);
    EXPECT_EQ(entry->facts.capabilityInfo, 0x0012);
    EXPECT_EQ(entry->facts.informationElements, ssidElement("probe"));
    EXPECT_EQ(entry->status, NL80211_BSS_STATUS_ASSOCIATED);

    const auto beaconOnly = scanEntry([](Reply& r) {
        r.bytes(NL80211_BSS_BSSID, bssidA).bytes(NL80211_BSS_BEACON_IES, ssidElement("beacon"));
    });
    EXPECT_EQ(beaconOnly->facts.informationElements, ssidElement("beacon"));
    EXPECT_EQ(beaconOnly->status, std::nullopt);

    EXPECT_FALSE(scanEntry([](Reply& r) { r.bytes(NL80211_BSS_BSSID, bssidA.left(4)); }));
}

TEST(Nl80211Scan, HiddenEntryGivesWayToNamedOneOfSameBssid)
{
    const auto result = [](const QByteArray& bssid, const QByteArray& ssid) {
        scan::RawBssFacts facts;
        facts.bssid = platform::nl80211::macText(bssid);
        facts.informationElements = ssidElement(ssid);
        return scan::deriveScanResult(facts);
    };
    const auto merged = platform::nl80211::mergeHiddenDuplicates({
        result(bssidA, QByteArray(4, '\0')),
        result(bssidB, "Other"),
        result(bssidA, "Hidden"),
        result(bssidB, QByteArray()),
    });
    ASSERT_EQ(merged.size(), 2);
    EXPECT_EQ(merged[0].ssid, "Hidden");
    EXPECT_EQ(merged[1].ssid, "Other");
}

TEST(Nl80211Malformed, ShortAndDamagedAttributesAreIgnored)
{
    Reply shortValues(NL80211_CMD_NEW_INTERFACE);
    shortValues.u32(NL80211_ATTR_IFINDEX, 3).bytes(NL80211_ATTR_WIPHY_FREQ, QByteArray(2, '\x7f'))
        .bytes(NL80211_ATTR_WIPHY_TX_POWER_LEVEL, QByteArray(1, '\x01'))
        .bytes(NL80211_ATTR_IFNAME, QByteArray("wlan0-without-terminator"));
    const auto info = platform::nl80211::parseInterface(shortValues);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->frequencyMhz, std::nullopt);
    EXPECT_EQ(info->txPowerMbm, std::nullopt);
    EXPECT_EQ(info->name, "wlan0-without-terminator");

    // A nested attribute whose payload is not a list of attributes.
    Reply garbageNest(NL80211_CMD_NEW_STATION);
    garbageNest.bytes(NL80211_ATTR_STA_INFO, QByteArray::fromHex("ff00ff"));
    EXPECT_NO_FATAL_FAILURE(platform::nl80211::parseStation(garbageNest));

    Reply emptyRate(NL80211_CMD_NEW_STATION);
    emptyRate.nest(NL80211_ATTR_STA_INFO, [](Reply& r) {
        r.bytes(NL80211_STA_INFO_SIGNAL, QByteArray()).nest(NL80211_STA_INFO_TX_BITRATE, [](Reply&) {});
    });
    const auto station = platform::nl80211::parseStation(emptyRate);
    ASSERT_TRUE(station);
    EXPECT_EQ(station->signalDbm, std::nullopt);
    EXPECT_EQ(station->txRate->mcs, std::nullopt);

    // No generic netlink header at all.
    nl_msg* bare = nlmsg_alloc();
    nlmsg_put(bare, NL_AUTO_PORT, NL_AUTO_SEQ, 0x1c, 0, 0);
    EXPECT_FALSE(platform::nl80211::parseInterface(bare));
    EXPECT_FALSE(platform::nl80211::parseScanEntry(bare));
    EXPECT_FALSE(platform::nl80211::parseEvent(bare));
    platform::nl80211::WiphyCollector collector;
    collector.add(bare);
    EXPECT_TRUE(collector.wiphys().isEmpty());
    nlmsg_free(bare);
    EXPECT_FALSE(platform::nl80211::parseSurvey(nullptr));
}

TEST(Nl80211Events, ScanEndsOnlyAfterItsOwnStart)
{
    const auto event = [](std::uint8_t command, std::uint32_t ifindex) {
        Reply reply(command);
        reply.u32(NL80211_ATTR_IFINDEX, ifindex).u32(NL80211_ATTR_WIPHY, 0);
        return *platform::nl80211::parseEvent(reply);
    };
    platform::nl80211::ScanCompletion triggered(3, true);
    EXPECT_FALSE(triggered.observe(event(NL80211_CMD_NEW_SCAN_RESULTS, 3)));  // an earlier scan's end
    EXPECT_FALSE(triggered.observe(event(NL80211_CMD_TRIGGER_SCAN, 4)));
    EXPECT_FALSE(triggered.observe(event(NL80211_CMD_TRIGGER_SCAN, 3)));
    EXPECT_FALSE(triggered.observe(event(NL80211_CMD_SCAN_ABORTED, 4)));
    EXPECT_TRUE(triggered.observe(event(NL80211_CMD_SCAN_ABORTED, 3)));
    EXPECT_TRUE(triggered.aborted());

    platform::nl80211::ScanCompletion joined(3, false);
    EXPECT_TRUE(joined.observe(event(NL80211_CMD_NEW_SCAN_RESULTS, 3)));
    EXPECT_FALSE(joined.aborted());
}

// This machine's kernel has no wireless stack; where one exists the checks still must not crash.
TEST(LinuxWirelessClient, ReportsMissingWirelessStackPlainly)
{
    static int argc = 1;
    static char name[] = "nl80211_tests";
    static char* argv[] = {name, nullptr};
    if (QCoreApplication::instance() == nullptr)
        new QCoreApplication(argc, argv);

    platform::nl80211::RequestSocket socket;
    platform::LinuxWirelessClient client;
    const QString status = client.statusText();
    if (socket.wirelessStackMissing()) {
        EXPECT_TRUE(client.interfaceNames().isEmpty());
        EXPECT_EQ(status, "No Wi-Fi support in this system's kernel (cfg80211 is not loaded)");
        EXPECT_EQ(client.interfaceWithName(QStringLiteral("wlan0")), nullptr);
        EXPECT_TRUE(socket.interfaces().isEmpty());
        EXPECT_TRUE(socket.triggerScan(1, {}).has_value());
    } else if (client.interfaceNames().isEmpty()) {
        EXPECT_EQ(status, "No Wi-Fi interface found");
    }
}

} // namespace
