#pragma once

#include "scan/scan_result_derivation.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

// Reads beacons and probe responses out of pcap and pcapng files (radiotap, bare 802.11 and
// Prism link types) and hands each one over as the raw facts a live interface would report.
namespace platform::capture {

struct BeaconFrame {
    std::int64_t frameNumber = 0;  // 1-based position in the file, counting every packet
    std::int64_t timestampUs = 0;  // capture time, microseconds since the Unix epoch
    scan::RawBssFacts facts;
};

enum class ReadStatus { Frame, End, Error };

class CaptureReader {
public:
    // Opens a capture file. On failure returns nullptr and sets *error to a one-line reason
    // (not a capture file, unsupported link type, unreadable).
    static std::unique_ptr<CaptureReader> open(const QString& path, QString* error);
    virtual ~CaptureReader() = default;

    // Advances to the next beacon or probe response; every other packet is skipped. After
    // Error, errorString() says why (a truncated file, for instance); frames read before stay valid.
    virtual ReadStatus next(BeaconFrame& out) = 0;
    virtual QString errorString() const = 0;
    virtual int linkType() const = 0;
};

// Link types the reader understands (the DLT numbers of the capture file header).
constexpr int LinkTypeIeee80211 = 105;
constexpr int LinkTypePrism = 119;
constexpr int LinkTypeRadiotap = 127;

// Decodes one captured packet of a link type. nullopt when it is not a beacon or probe
// response, or too short to be one. Never reads outside [data, data + length).
std::optional<scan::RawBssFacts> parsePacket(int linkType, const std::uint8_t* data, std::size_t length);

} // namespace platform::capture
