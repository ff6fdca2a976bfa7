// Feeds arbitrary packets to the capture decoder. The first input byte picks the link type
// (low two bits; the fourth choice is one the decoder must refuse) and how many bytes the
// capture's snapshot length cut off (next three bits); the rest is the packet.
#include "platform/capture/capture_reader.h"
#include "platform/capture/packet_decoder.h"

#include <array>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    constexpr std::array<int, 4> kLinkTypes{platform::capture::LinkTypeIeee80211, platform::capture::LinkTypePrism,
                                            platform::capture::LinkTypeRadiotap, 1};
    const int linkType = kLinkTypes[data[0] & 0x03u];
    const std::size_t cutOff = (data[0] >> 2) & 0x07u;
    const std::uint8_t* packet = data + 1;
    const std::size_t length = size - 1;

    const auto facts = platform::capture::decodePacket(linkType, packet, length, length + cutOff);
    if (facts && (linkType == 1 || static_cast<std::size_t>(facts->informationElements.size()) > length))
        std::abort();
    return 0;
}
