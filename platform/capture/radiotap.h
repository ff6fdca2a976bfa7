#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

// The few radiotap fields a replayed beacon needs, read from the header that precedes each
// 802.11 frame of link type 127.
namespace platform::capture {

struct RadiotapFields {
    std::size_t headerLength = 0;  // the 802.11 frame starts here
    bool frameEndsWithFcs = false;
    std::optional<int> frequencyMhz;
    std::optional<int> signalDbm;
    std::optional<int> noiseDbm;
};

// nullopt when the header itself is unusable (wrong version, length beyond the packet, present
// bitmaps running past the header). A field that cannot be located leaves the later ones unset.
std::optional<RadiotapFields> parseRadiotap(const std::uint8_t* data, std::size_t length);

} // namespace platform::capture
