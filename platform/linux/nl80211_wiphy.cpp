#include "platform/linux/nl80211_attributes.h"

#include <linux/nl80211.h>

namespace platform::nl80211 {
namespace {

using namespace attributes;
using platform::ChannelBand;
using platform::ChannelWidthCode;

void noteBitrates(nlattr* rates, WiphyCollector::BandFacts& band)
{
    if (rates == nullptr)
        return;
    nlattr* entry = nullptr;
    int remaining = 0;
    nla_for_each_nested(entry, rates, remaining) {
        AttributeTable<NL80211_BITRATE_ATTR_MAX> rate;
        parseNested(entry, rate);
        const auto value = readU32(rate[NL80211_BITRATE_ATTR_RATE]);
        if (!value)
            continue;
        switch (*value) {
        case 10: case 20: case 55: case 110:
            band.hasCckRate = true;
            break;
        case 60: case 90: case 120: case 180: case 240: case 360: case 480: case 540:
            band.hasOfdmRate = true;
            break;
        default:
            break;
        }
    }
}

void noteFrequencies(nlattr* frequencies, WiphyCollector::BandFacts& band)
{
    if (frequencies == nullptr)
        return;
    nlattr* entry = nullptr;
    int remaining = 0;
    nla_for_each_nested(entry, frequencies, remaining) {
        AttributeTable<NL80211_FREQUENCY_ATTR_MAX> frequency;
        parseNested(entry, frequency);
        const auto mhz = readU32(frequency[NL80211_FREQUENCY_ATTR_FREQ]);
        if (mhz)
            band.frequencies[static_cast<int>(*mhz)] = frequency[NL80211_FREQUENCY_ATTR_DISABLED] != nullptr;
    }
}

void noteBands(nlattr* bands, WiphyCollector::Partial& wiphy)
{
    if (bands == nullptr)
        return;
    nlattr* entry = nullptr;
    int remaining = 0;
    nla_for_each_nested(entry, bands, remaining) {
        AttributeTable<NL80211_BAND_ATTR_MAX> band;
        parseNested(entry, band);
        auto& facts = wiphy.bands[nla_type(entry)];
        noteFrequencies(band[NL80211_BAND_ATTR_FREQS], facts);
        noteBitrates(band[NL80211_BAND_ATTR_RATES], facts);
        facts.hasHt = facts.hasHt || band[NL80211_BAND_ATTR_HT_CAPA] != nullptr;
        facts.hasVht = facts.hasVht || band[NL80211_BAND_ATTR_VHT_CAPA] != nullptr;
    }
}

void noteInterfaceTypes(nlattr* types, WiphyCollector::Partial& wiphy)
{
    if (types == nullptr)
        return;
    nlattr* entry = nullptr;
    int remaining = 0;
    nla_for_each_nested(entry, types, remaining) {
        const int type = nla_type(entry);
        wiphy.supportsStation = wiphy.supportsStation || type == NL80211_IFTYPE_STATION;
        wiphy.supportsIbss = wiphy.supportsIbss || type == NL80211_IFTYPE_ADHOC;
    }
}

std::uint32_t bandPhyModes(int bandIndex, const WiphyCollector::BandFacts& band)
{
    std::uint32_t modes = 0;
    if (band.hasHt)
        modes |= platform::PhyN;
    if (bandIndex == NL80211_BAND_2GHZ) {
        if (band.hasCckRate)
            modes |= platform::PhyB;
        if (band.hasOfdmRate)
            modes |= platform::PhyG;
    } else if (bandIndex == NL80211_BAND_5GHZ) {
        modes |= platform::PhyA;
        if (band.hasVht)
            modes |= platform::PhyAC;
    }
    return modes;
}

} // namespace

void WiphyCollector::add(nl_msg* message)
{
    AttributeTable<NL80211_ATTR_MAX> tb;
    if (!parseTopLevel(message, tb))
        return;
    const auto index = readU32(tb[NL80211_ATTR_WIPHY]);
    if (!index)
        return;
    Partial& wiphy = partial_[*index];
    if (const QString name = readString(tb[NL80211_ATTR_WIPHY_NAME]); !name.isEmpty())
        wiphy.name = name;
    if (const auto maxSsids = readU8(tb[NL80211_ATTR_MAX_NUM_SCAN_SSIDS]))
        wiphy.maxScanSsids = *maxSsids;
    noteInterfaceTypes(tb[NL80211_ATTR_SUPPORTED_IFTYPES], wiphy);
    noteBands(tb[NL80211_ATTR_WIPHY_BANDS], wiphy);
}

QList<WiphyInfo> WiphyCollector::wiphys() const
{
    QList<WiphyInfo> result;
    for (const auto& [index, partial] : partial_) {
        WiphyInfo info;
        info.index = index;
        info.name = partial.name;
        info.supportsStation = partial.supportsStation;
        info.supportsIbss = partial.supportsIbss;
        info.maxScanSsids = partial.maxScanSsids;
        for (const auto& [bandIndex, band] : partial.bands) {
            const std::uint32_t modes = bandPhyModes(bandIndex, band);
            info.phyModes |= modes;
            if (bandIndex == NL80211_BAND_2GHZ)
                info.phyModes2GHz = modes;
            else if (bandIndex == NL80211_BAND_5GHZ)
                info.phyModes5GHz = modes;
            else
                continue;
            const ChannelBand channelBand = bandIndex == NL80211_BAND_2GHZ ? ChannelBand::Band2GHz
                                                                            : ChannelBand::Band5GHz;
            for (const auto& [mhz, disabled] : band.frequencies) {
                const auto channel = scan::channelForFrequency(mhz);
                if (!disabled && channel)
                    info.channels.append({*channel, channelBand, ChannelWidthCode::Width20MHz});
            }
        }
        result.append(info);
    }
    return result;
}

int activePhyMode(const WiphyInfo& wiphy, const platform::ScanResult& accessPoint)
{
    std::uint32_t own = wiphy.phyModes;
    if (accessPoint.channelBand == ChannelBand::Band2GHz)
        own = wiphy.phyModes2GHz;
    else if (accessPoint.channelBand == ChannelBand::Band5GHz)
        own = wiphy.phyModes5GHz;
    const std::uint32_t common = own & accessPoint.phyModes;
    if (common & platform::PhyAC)
        return platform::PhyMode11ac;
    if (common & platform::PhyN)
        return platform::PhyMode11n;
    if (common & platform::PhyG)
        return platform::PhyMode11g;
    if (common & platform::PhyA)
        return platform::PhyMode11a;
    if (common & platform::PhyB)
        return platform::PhyMode11b;
    return platform::PhyModeNone;
}

} // namespace platform::nl80211
