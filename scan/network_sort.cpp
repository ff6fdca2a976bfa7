#include "scan/network_sort.h"

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

ComparisonResult comparePhyMode(const platform::ScanResult& network, const platform::ScanResult& other)
{
    return order(network.phyModes, other.phyModes);
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
