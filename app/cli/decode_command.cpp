#include "app/cli/decode_command.h"

#include "app/cli/json_writer.h"
#include "core/memory_settings.h"
#include "platform/capture/capture_reader.h"
#include "scan/record_builder.h"
#include "scan/scan_result_derivation.h"

#include <QDateTime>

#include <memory>

namespace app::cli {
namespace {

void reportFailure(std::FILE* err, const QString& path, const QString& reason)
{
    std::fprintf(err, "skyvane-cli: %s: %s\n", path.toLocal8Bit().constData(), reason.toUtf8().constData());
}

void writeFrame(JsonWriter& json, std::int64_t frameNumber, const scan::RawBssFacts& facts, const QDateTime& seen)
{
    const platform::ScanResult scanned = scan::deriveScanResult(facts);
    // The record dies before this frame ends, so it can view the result without owning it;
    // a shared copy per frame would be an allocation spent on nothing.
    const std::shared_ptr<const platform::ScanResult> network(std::shared_ptr<void>(), &scanned);
    // Decoding reads nothing of the user's: no tags, no stored names.
    static const core::MemorySettings noUserSettings;
    scan::ScanedResultInfo record = scan::buildRecord(scan::observationFromScanResult(scanned, seen, core::InterfaceGeneration::Later),
                                          network, core::InterfaceGeneration::Later, noUserSettings);
    // Fills the rate list with the HT/VHT rates before it is printed.
    const QString maxDataRate = record.getMaxDataRate();

    json.beginObject();
    json.field("frame", frameNumber);
    json.field("bssid", record.bssid);
    json.field("ssid", record.ssid);
    json.field("supportedDataRates", record.supportedDataRates);
    json.field("maxDataRate", maxDataRate);
    json.field("shortGIFor24MhzEnabled", record.shortGIFor24MhzEnabled);
    json.field("shortGIFor40MhzEnabled", record.shortGIFor40MhzEnabled);
    json.field("numberOfStreams", record.numberOfStreams);
    json.field("groupDataChiperEncryption", record.groupDataChiperEncryption);
    json.field("pairWiseChiperEncryption", record.pairWiseChiperEncryption);
    json.field("connectedClientCount", record.connectedClientCount);
    json.field("channelUtilization", record.channelUtilization);
    json.field("channelOffset", record.channelOffset);
    json.field("protectionMode", record.protectionMode);
    json.field("isWPS", record.isWPS);
    json.field("apname", record.apname);
    json.field("mobilityDomain", record.mobilityDomain);
    json.field("channelWidth", record.channelWidth);
    json.field("originalChannel", record.originalChannel);
    json.field("channelBond", record.channelBond);
    json.field("rssi", record.rssi);
    json.field("noise", record.noise);
    json.field("singnalToNoise", record.singnalToNoise);
    json.field("cc", record.cc);
    json.field("vendorName", record.vendorName);
    json.field("supportedPHYModes", record.supportedPHYModes);
    json.field("ibss", record.ibss);
    json.endObject();
}

} // namespace

int decodeCapture(const QString& path, std::FILE* out, std::FILE* err)
{
    QString error;
    const std::unique_ptr<platform::capture::CaptureReader> reader = platform::capture::CaptureReader::open(path, &error);
    if (!reader) {
        reportFailure(err, path, error);
        return 1;
    }

    // The reader hands over no capture times and lastSeen is not printed, so one "now" serves all.
    const QDateTime seen = QDateTime::currentDateTime();
    JsonWriter json(out);
    platform::capture::BeaconFrame frame;
    for (;;) {
        const platform::capture::ReadStatus status = reader->next(frame);
        if (status == platform::capture::ReadStatus::End)
            break;
        if (status == platform::capture::ReadStatus::Error) {
            json.flush();
            reportFailure(err, path, reader->errorString());
            return 1;
        }
        writeFrame(json, frame.frameNumber, frame.facts, seen);
    }
    if (!json.flush()) {
        reportFailure(err, path, QStringLiteral("cannot write the decoded frames"));
        return 1;
    }
    return 0;
}

} // namespace app::cli
