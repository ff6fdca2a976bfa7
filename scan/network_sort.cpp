#include "scan/network_sort.h"

namespace scan {

namespace {

template <typename T>
ComparisonResult order(const T& left, const T& right)
{
    if (left < right)
        return ComparisonResult::Ascending;
    if (right < left)
        return ComparisonResult::Descending;
    return ComparisonResult::Same;
}

ComparisonResult orderTexts(const QString& left, const QString& right)
{
    const int result = left.compare(right);
    return result < 0 ? ComparisonResult::Ascending : result > 0 ? ComparisonResult::Descending : ComparisonResult::Same;
}

double signalToNoise(const platform::ScanResult& network)
{
    return static_cast<double>(network.rssiValue) - static_cast<double>(network.noiseMeasurement);
}

} // namespace

ComparisonResult compareSSID(const platform::ScanResult& network, const platform::ScanResult& other)
{
    return orderTexts(network.ssid, other.ssid);
}

ComparisonResult compareBSSID(const platform::ScanResult& network, const platform::ScanResult& other)
{
    return orderTexts(network.bssid, other.bssid);
}

ComparisonResult compareChannel(const platform::ScanResult& network, const platform::ScanResult& other)
{
    return order(network.channelNumber, other.channelNumber);
}

int phyModeCode(const platform::ScanResult& network, core::InterfaceGeneration generation)
{
    // Both generations number the standards oldest first, so the highest supported code is the newest.
    const int highest = core::isOSSnowLeopard(generation) ? 3 : 5;
    for (int code = highest; code >= 0; --code) {
        if (network.supportsPHYMode(code, generation))
            return code;
    }
    return -1;
}

ComparisonResult comparePhyMode(const platform::ScanResult& network, const platform::ScanResult& other,
                                core::InterfaceGeneration generation)
{
    // Not the bit set: read as a number it also weighs the older standards a network keeps
    // (b/g/n above a/n), which the shown code does not, and it counts ac on the oldest
    // generation, which has no code for it.
    return order(phyModeCode(network, generation), phyModeCode(other, generation));
}

ComparisonResult compareSecurityMode(const platform::ScanResult& network, const platform::ScanResult& other)
{
    return order(network.securityMode, other.securityMode);
}

ComparisonResult compareRSSI(const platform::ScanResult& network, const platform::ScanResult& other)
{
    return order(network.rssiValue, other.rssiValue);
}

ComparisonResult compareNoise(const platform::ScanResult& network, const platform::ScanResult& other)
{
    return order(network.noiseMeasurement, other.noiseMeasurement);
}

ComparisonResult compareIBSS(const platform::ScanResult& network, const platform::ScanResult& other)
{
    return order(network.ibss, other.ibss);
}

ComparisonResult compareSN(const platform::ScanResult& network, const platform::ScanResult& other)
{
    return order(signalToNoise(network), signalToNoise(other));
}

} // namespace scan
