#include "scan/scaned_result_info.h"

namespace scan {

ScanedResultInfo ScanedResultInfo::copy() const
{
    ScanedResultInfo result;
    result.shortGIFor24MhzEnabled = shortGIFor24MhzEnabled;
    result.shortGIFor40MhzEnabled = shortGIFor40MhzEnabled;
    result.supportedPHYModes = supportedPHYModes;
    result.maxDataRate = maxDataRate;
    result.supportedDataRates = supportedDataRates;
    result.isWPS = isWPS;
    result.groupDataChiperEncryption = groupDataChiperEncryption;
    result.pairWiseChiperEncryption = pairWiseChiperEncryption;
    result.channelBond = channelBond;
    result.channelWidth = channelWidth;
    result.numberOfStreams = numberOfStreams;
    result.vendorName = vendorName;
    result.singnalToNoise = singnalToNoise;
    result.apname = apname;
    result.connectedClientCount = connectedClientCount;
    result.protectionMode = protectionMode;
    result.channelUtilization = channelUtilization;
    result.mobilityDomain = mobilityDomain;
    return result;
}

void ScanedResultInfo::resetInformationElementInformation()
{
    shortGIFor24MhzEnabled = -1;
    shortGIFor40MhzEnabled = -1;
    // An empty list rather than none: the rate completion only fills a list that exists.
    supportedDataRates = QStringList();
    isWPS = -1;
    groupDataChiperEncryption = QString();
    pairWiseChiperEncryption = QString();
    numberOfStreams = 0;
    maxDataRate = QString();
    channelBond = 0.0;
    supportedPHYModes = QString();
    apname = QString();
    connectedClientCount = -1;
    channelUtilization = -1;
    protectionMode = QString();
    mobilityDomain = QString();
}

} // namespace scan
