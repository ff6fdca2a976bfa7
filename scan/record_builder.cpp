#include "scan/record_builder.h"

#include "core/units.h"
#include "scan/scanner_utils.h"

#include <utility>

namespace scan {

namespace {

// The oldest interface reports no width, only the HT secondary-channel offset.
void applyWidthFromOffset(ScanedResultInfo& record)
{
    if (record.channelOffset == 0)
        record.channelWidth = 20;
    else if (record.channelOffset == 1 || record.channelOffset == -1)
        record.channelWidth = 40;
}

void decodeElements(ScanedResultInfo& record, const platform::ScanResult* network, core::InterfaceGeneration generation)
{
    static const QByteArray noElements;
    if (core::isOSSnowLeopard(generation)) {
        record.parseInformationElement(network ? network->ieData() : noElements);
        record.cc = QStringLiteral("N/A");
        applyWidthFromOffset(record);
        record.securityModeString = ScannerUtils::stringForSecurityMode(record.securityMode, generation);
        return;
    }
    record.parseInformationElement(network ? network->informationElementData : noElements);
    if (network) {
        record.cc = network->countryCode;
        record.channelWidth = core::widthMhz(network->channelWidth);
    }
}

} // namespace

int noiseOrTypicalFloor(int noise, double channelBond)
{
    if (noise != 0)
        return noise;
    if (channelBond < 3.0)
        return -92;
    if (channelBond > 3.0)
        return -94;
    return noise;
}

ScanedResultInfo buildRecord(const StoredObservation& row,
                             std::shared_ptr<const platform::ScanResult> network,
                             core::InterfaceGeneration generation, const core::UserSettings& settings,
                             const QHash<QString, QString>* securityTexts)
{
    ScanedResultInfo record;
    record.bssid = row.bssid;
    record.network = std::move(network);
    record.ssid = row.ssid;
    record.originalChannel = row.originalChannel;
    record.channel = row.channel.isEmpty() ? QString::number(row.originalChannel) : row.channel;
    record.supportedPHYModes = row.phyModes;
    record.rssi = row.rssi;
    record.noise = row.noise;
    record.securityMode = row.securityMode;
    if (securityTexts)
        record.securityModeString = securityTexts->value(row.bssid);
    record.ibss = static_cast<std::int8_t>(row.ibss);
    record.lastSeen = row.lastSeen;
    record.channelBond = row.channelBond;

    decodeElements(record, record.network.get(), generation);

    // Some platforms report 40 MHz for three-stream 802.11ac access points that run at 80.
    if (record.numberOfStreams == 3 && record.channelWidth == 40 && record.supportedPHYModes.endsWith(QLatin1String("ac")))
        record.channelWidth = 80;
    if (record.channelWidth >= 80)
        record.channelOffset = 0;

    record.noise = noiseOrTypicalFloor(record.noise, record.channelBond);
    record.singnalToNoise = record.rssi - record.noise;
    if (record.singnalToNoise < 0)
        record.singnalToNoise = 0;

    if (record.numberOfStreams == 0)
        record.numberOfStreams = 1;

    record.vendorName = ScannerUtils::vendorNameForMAC(record.bssid);
    const QString tag = settings.value(record.bssid).toString();
    record.bssidTag = ScannerUtils::hasValue(tag) ? tag : QStringLiteral("");
    return record;
}

StoredObservation observationFromScanResult(const platform::ScanResult& network, const QDateTime& seen,
                                            core::InterfaceGeneration generation)
{
    StoredObservation row;
    row.bssid = ScannerUtils::normalizeMAC(network.bssid);
    row.ssid = network.ssid;
    row.originalChannel = network.channelNumber;
    row.phyModes = ScannerUtils::getSupportedPHYModeString(network, generation);
    row.rssi = network.rssiValue;
    row.noise = network.noiseMeasurement;
    row.singnalToNoise = network.rssiValue - network.noiseMeasurement;
    row.securityMode = network.securityMode;
    row.ibss = network.ibss ? 1 : 0;
    row.lastSeen = seen;
    row.channelBond = core::bandGhz(network.channelBand, network.channelNumber);
    return row;
}

} // namespace scan
