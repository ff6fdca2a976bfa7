#include "platform/capture/packet_decoder.h"

#include "platform/capture/capture_reader.h"
#include "platform/capture/frame_check_sequence.h"
#include "platform/capture/management_frame.h"
#include "platform/capture/prism.h"
#include "platform/capture/radiotap.h"

namespace platform::capture {

std::optional<scan::RawBssFacts> decodePacket(int linkType, const std::uint8_t* data,
                                        std::size_t capturedLength, std::size_t wireLength)
{
    std::optional<RadiotapFields> radiotap;
    std::size_t frameOffset = 0;
    switch (linkType) {
    case LinkTypeRadiotap:
        radiotap = parseRadiotap(data, capturedLength);
        if (!radiotap)
            return std::nullopt;
        frameOffset = radiotap->headerLength;
        break;
    case LinkTypePrism:
        if (const auto headerLength = prismHeaderLength(data, capturedLength))
            frameOffset = *headerLength;
        else
            return std::nullopt;
        break;
    case LinkTypeIeee80211:
        break;
    default:
        return std::nullopt;
    }

    const std::uint8_t* frame = data + frameOffset;
    std::size_t frameLength = capturedLength - frameOffset;
    if (!isBeaconOrProbeResponse(frame, frameLength))
        return std::nullopt;

    const std::size_t missing = wireLength > capturedLength ? wireLength - capturedLength : 0;
    if (radiotap) {
        if (radiotap->frameEndsWithFcs && missing < kFcsLength) {
            const std::size_t kept = kFcsLength - missing;
            if (frameLength < kept)
                return std::nullopt;
            frameLength -= kept;
        }
    } else if (missing == 0 && endsWithValidFcs(frame, frameLength)) {
        // Nothing in these link types says whether the FCS was kept; a matching CRC does.
        frameLength -= kFcsLength;
    }

    auto facts = decodeBeaconOrProbeResponse(frame, frameLength);
    if (facts && radiotap) {
        facts->frequencyMhz = radiotap->frequencyMhz;
        facts->signalDbm = radiotap->signalDbm.value_or(0);
        facts->noiseDbm = radiotap->noiseDbm.value_or(0);
    }
    return facts;
}

std::optional<scan::RawBssFacts> parsePacket(int linkType, const std::uint8_t* data, std::size_t length)
{
    return decodePacket(linkType, data, length, length);
}

} // namespace platform::capture
