#include "platform/linux/nl80211_parsers.h"

#include "platform/linux/nl80211_attributes.h"

#include <linux/nl80211.h>
#include <cmath>
#include <map>

namespace platform::nl80211 {
namespace {

using namespace attributes;
using platform::ChannelBand;
using platform::ChannelWidthCode;

RateInfo parseRate(nlattr* attribute)
{
    AttributeTable<NL80211_RATE_INFO_MAX> rate;
    parseNested(attribute, rate);
    RateInfo info;
    if (const auto wide = readU32(rate[NL80211_RATE_INFO_BITRATE32]))
        info.bitrate100Kbps = static_cast<int>(*wide);
    else if (const auto narrow = readU16(rate[NL80211_RATE_INFO_BITRATE]))
        info.bitrate100Kbps = *narrow;

    const auto perStream = [&](int mcsType, int nssType) {
        const auto mcs = readU8(rate[mcsType]);
        if (!mcs)
            return false;
        info.mcs = *mcs;
        if (const auto nss = readU8(rate[nssType]))
            info.spatialStreams = *nss;
        return true;
    };
    if (perStream(NL80211_RATE_INFO_EHT_MCS, NL80211_RATE_INFO_EHT_NSS)) {
        if (const auto gi = readU8(rate[NL80211_RATE_INFO_EHT_GI]))
            info.shortGuardInterval = *gi == NL80211_RATE_INFO_EHT_GI_0_8;
    } else if (perStream(NL80211_RATE_INFO_HE_MCS, NL80211_RATE_INFO_HE_NSS)) {
        if (const auto gi = readU8(rate[NL80211_RATE_INFO_HE_GI]))
            info.shortGuardInterval = *gi == NL80211_RATE_INFO_HE_GI_0_8;
    } else if (perStream(NL80211_RATE_INFO_VHT_MCS, NL80211_RATE_INFO_VHT_NSS)) {
        info.shortGuardInterval = rate[NL80211_RATE_INFO_SHORT_GI] != nullptr;
    } else if (const auto ht = readU8(rate[NL80211_RATE_INFO_MCS])) {
        info.mcs = *ht;
        if (*ht < 32)
            info.spatialStreams = *ht / 8 + 1;
        info.shortGuardInterval = rate[NL80211_RATE_INFO_SHORT_GI] != nullptr;
    }

    if (rate[NL80211_RATE_INFO_320_MHZ_WIDTH])
        info.widthMhz = 320;
    else if (rate[NL80211_RATE_INFO_160_MHZ_WIDTH] || rate[NL80211_RATE_INFO_80P80_MHZ_WIDTH])
        info.widthMhz = 160;
    else if (rate[NL80211_RATE_INFO_80_MHZ_WIDTH])
        info.widthMhz = 80;
    else if (rate[NL80211_RATE_INFO_40_MHZ_WIDTH])
        info.widthMhz = 40;
    else if (rate[NL80211_RATE_INFO_10_MHZ_WIDTH])
        info.widthMhz = 10;
    else if (rate[NL80211_RATE_INFO_5_MHZ_WIDTH])
        info.widthMhz = 5;
    return info;
}


ChannelWidthCode widthCode(std::uint32_t width)
{
    switch (width) {
    case NL80211_CHAN_WIDTH_20_NOHT:
    case NL80211_CHAN_WIDTH_20: return ChannelWidthCode::Width20MHz;
    case NL80211_CHAN_WIDTH_40: return ChannelWidthCode::Width40MHz;
    case NL80211_CHAN_WIDTH_80: return ChannelWidthCode::Width80MHz;
    case NL80211_CHAN_WIDTH_80P80:
    case NL80211_CHAN_WIDTH_160: return ChannelWidthCode::Width160MHz;
    default: return ChannelWidthCode::Unknown;
    }
}

} // namespace

std::optional<InterfaceInfo> parseInterface(nl_msg* message)
{
    AttributeTable<NL80211_ATTR_MAX> tb;
    if (!parseTopLevel(message, tb))
        return std::nullopt;
    // Wireless devices without a network device (P2P device, NAN) have no interface index.
    const auto ifindex = readU32(tb[NL80211_ATTR_IFINDEX]);
    if (!ifindex)
        return std::nullopt;
    InterfaceInfo info;
    info.ifindex = static_cast<int>(*ifindex);
    info.name = readString(tb[NL80211_ATTR_IFNAME]);
    info.wiphy = readU32(tb[NL80211_ATTR_WIPHY]);
    info.iftype = readU32(tb[NL80211_ATTR_IFTYPE]).value_or(NL80211_IFTYPE_UNSPECIFIED);
    info.macAddress = readMac(tb[NL80211_ATTR_MAC]);
    if (const auto frequency = readU32(tb[NL80211_ATTR_WIPHY_FREQ]))
        info.frequencyMhz = static_cast<int>(*frequency);
    info.channelWidth = readU32(tb[NL80211_ATTR_CHANNEL_WIDTH]);
    if (const auto center = readU32(tb[NL80211_ATTR_CENTER_FREQ1]))
        info.centerFrequency1Mhz = static_cast<int>(*center);
    if (const auto center = readU32(tb[NL80211_ATTR_CENTER_FREQ2]))
        info.centerFrequency2Mhz = static_cast<int>(*center);
    info.txPowerMbm = readS32(tb[NL80211_ATTR_WIPHY_TX_POWER_LEVEL]);
    info.ssid = readBytes(tb[NL80211_ATTR_SSID]);
    return info;
}

std::optional<StationInfo> parseStation(nl_msg* message)
{
    AttributeTable<NL80211_ATTR_MAX> tb;
    if (!parseTopLevel(message, tb) || tb[NL80211_ATTR_STA_INFO] == nullptr)
        return std::nullopt;
    AttributeTable<NL80211_STA_INFO_MAX> station;
    if (!parseNested(tb[NL80211_ATTR_STA_INFO], station))
        return std::nullopt;
    StationInfo info;
    info.macAddress = readMac(tb[NL80211_ATTR_MAC]);
    info.signalDbm = readS8(station[NL80211_STA_INFO_SIGNAL]);
    if (!info.signalDbm)
        info.signalDbm = readS8(station[NL80211_STA_INFO_SIGNAL_AVG]);
    if (station[NL80211_STA_INFO_TX_BITRATE] != nullptr)
        info.txRate = parseRate(station[NL80211_STA_INFO_TX_BITRATE]);
    return info;
}

std::optional<SurveyEntry> parseSurvey(nl_msg* message)
{
    AttributeTable<NL80211_ATTR_MAX> tb;
    if (!parseTopLevel(message, tb))
        return std::nullopt;
    AttributeTable<NL80211_SURVEY_INFO_MAX> survey;
    if (!parseNested(tb[NL80211_ATTR_SURVEY_INFO], survey))
        return std::nullopt;
    const auto frequency = readU32(survey[NL80211_SURVEY_INFO_FREQUENCY]);
    if (!frequency)
        return std::nullopt;
    SurveyEntry entry;
    entry.frequencyMhz = static_cast<int>(*frequency);
    entry.noiseDbm = readS8(survey[NL80211_SURVEY_INFO_NOISE]);
    entry.inUse = survey[NL80211_SURVEY_INFO_IN_USE] != nullptr;
    return entry;
}

std::optional<RegulatoryInfo> parseRegulatory(nl_msg* message)
{
    AttributeTable<NL80211_ATTR_MAX> tb;
    if (!parseTopLevel(message, tb))
        return std::nullopt;
    const QString alpha2 = readString(tb[NL80211_ATTR_REG_ALPHA2]);
    if (alpha2.size() != 2)
        return std::nullopt;
    return RegulatoryInfo{alpha2, readU32(tb[NL80211_ATTR_WIPHY])};
}

std::optional<ScanEntry> parseScanEntry(nl_msg* message)
{
    AttributeTable<NL80211_ATTR_MAX> tb;
    if (!parseTopLevel(message, tb))
        return std::nullopt;
    AttributeTable<NL80211_BSS_MAX> bss;
    if (!parseNested(tb[NL80211_ATTR_BSS], bss))
        return std::nullopt;
    ScanEntry entry;
    entry.facts.bssid = readMac(bss[NL80211_BSS_BSSID]);
    if (entry.facts.bssid.isEmpty())
        return std::nullopt;
    entry.ifindex = static_cast<int>(readU32(tb[NL80211_ATTR_IFINDEX]).value_or(0));
    if (const auto frequency = readU32(bss[NL80211_BSS_FREQUENCY]))
        entry.facts.frequencyMhz = static_cast<int>(*frequency);
    if (const auto mbm = readS32(bss[NL80211_BSS_SIGNAL_MBM]))
        entry.facts.signalDbm = *mbm / 100;
    entry.facts.capabilityInfo = readU16(bss[NL80211_BSS_CAPABILITY]).value_or(0);
    entry.facts.beaconInterval = readU16(bss[NL80211_BSS_BEACON_INTERVAL]).value_or(0);
    // The latest frame's elements, which may be a probe response; a BSS known only from its
    // beacons may carry the beacon copy alone.
    entry.facts.informationElements = readBytes(bss[NL80211_BSS_INFORMATION_ELEMENTS]);
    if (entry.facts.informationElements.isEmpty())
        entry.facts.informationElements = readBytes(bss[NL80211_BSS_BEACON_IES]);
    entry.status = readU32(bss[NL80211_BSS_STATUS]);
    return entry;
}

std::optional<Event> parseEvent(nl_msg* message)
{
    AttributeTable<NL80211_ATTR_MAX> tb;
    if (!parseTopLevel(message, tb))
        return std::nullopt;
    Event event;
    event.command = static_cast<genlmsghdr*>(nlmsg_data(nlmsg_hdr(message)))->cmd;
    if (const auto ifindex = readU32(tb[NL80211_ATTR_IFINDEX]))
        event.ifindex = static_cast<int>(*ifindex);
    event.wiphy = readU32(tb[NL80211_ATTR_WIPHY]);
    return event;
}

QList<platform::ScanResult> mergeHiddenDuplicates(const QList<platform::ScanResult>& results)
{
    QList<platform::ScanResult> merged;
    std::map<QString, qsizetype> positionByBssid;
    for (const auto& result : results) {
        const QString key = result.bssid.toLower();
        const auto found = positionByBssid.find(key);
        if (found == positionByBssid.end()) {
            positionByBssid.emplace(key, merged.size());
            merged.append(result);
        } else if (merged[found->second].ssid.isEmpty() && !result.ssid.isEmpty()) {
            merged[found->second] = result;
        }
    }
    return merged;
}

QString macText(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex(':'));
}

std::optional<platform::WlanChannel> channelOf(const InterfaceInfo& info)
{
    if (!info.frequencyMhz)
        return std::nullopt;
    const auto number = scan::channelForFrequency(*info.frequencyMhz);
    if (!number)
        return std::nullopt;
    platform::WlanChannel channel;
    channel.channelNumber = *number;
    channel.channelBand = *info.frequencyMhz < 2500 ? ChannelBand::Band2GHz : ChannelBand::Band5GHz;
    channel.channelWidth = info.channelWidth ? widthCode(*info.channelWidth) : ChannelWidthCode::Width20MHz;
    return channel;
}

int milliwattsFromMbm(int mbm)
{
    return static_cast<int>(std::lround(std::pow(10.0, mbm / 1000.0)));
}

} // namespace platform::nl80211
