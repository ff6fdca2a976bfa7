#include "platform/capture/management_frame.h"

#include "platform/capture/little_endian.h"

#include <QLatin1StringView>

#include <array>

namespace platform::capture {
namespace {

constexpr std::uint8_t kSubtypeProbeResponse = 5;
constexpr std::uint8_t kSubtypeBeacon = 8;
constexpr std::uint8_t kFlagOrder = 0x80;
constexpr std::size_t kHeaderLength = 24;
constexpr std::size_t kHtControlLength = 4;
constexpr std::size_t kAddress3Offset = 16;
constexpr std::size_t kFixedFieldsLength = 12;  // timestamp, beacon interval, capability

QString formatMac(const std::uint8_t* address)
{
    constexpr char kHex[] = "0123456789abcdef";
    std::array<char, 17> text{};
    for (std::size_t i = 0; i < 6; ++i) {
        text[i * 3] = kHex[address[i] >> 4];
        text[i * 3 + 1] = kHex[address[i] & 0x0f];
        if (i < 5)
            text[i * 3 + 2] = ':';
    }
    return QLatin1StringView(text.data(), static_cast<qsizetype>(text.size())).toString();
}

} // namespace

bool isBeaconOrProbeResponse(const std::uint8_t* frame, std::size_t length)
{
    if (length < 2)
        return false;
    const std::uint8_t control = frame[0];
    const unsigned version = control & 0x03u;
    const unsigned type = (control >> 2) & 0x03u;
    const unsigned subtype = control >> 4;
    return version == 0 && type == 0 && (subtype == kSubtypeBeacon || subtype == kSubtypeProbeResponse);
}

std::optional<scan::RawBssFacts> decodeBeaconOrProbeResponse(const std::uint8_t* frame, std::size_t length)
{
    if (!isBeaconOrProbeResponse(frame, length) || length < kHeaderLength)
        return std::nullopt;
    // An HT Control field sits between the header and the body of a management frame whose
    // Order bit is set.
    const std::size_t bodyOffset = kHeaderLength + ((frame[1] & kFlagOrder) ? kHtControlLength : 0);
    if (length < bodyOffset + kFixedFieldsLength)
        return std::nullopt;

    const std::uint8_t* body = frame + bodyOffset;
    const std::size_t elementsOffset = bodyOffset + kFixedFieldsLength;
    scan::RawBssFacts facts;
    facts.bssid = formatMac(frame + kAddress3Offset);
    facts.beaconInterval = readLe16(body + 8);
    facts.capabilityInfo = readLe16(body + 10);
    facts.informationElements = QByteArray(reinterpret_cast<const char*>(frame + elementsOffset),
                                           static_cast<qsizetype>(length - elementsOffset));
    return facts;
}

} // namespace platform::capture
