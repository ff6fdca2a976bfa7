#pragma once

#include "scan/scan_result_derivation.h"

#include <cstddef>
#include <cstdint>
#include <optional>

// The 802.11 beacon and probe response: the two management frames that describe a BSS.
namespace platform::capture {

// Looks at the frame control field only, so other packets are dismissed before any work.
bool isBeaconOrProbeResponse(const std::uint8_t* frame, std::size_t length);

// BSSID, fixed fields and element bytes of a beacon or probe response whose FCS, if any, was
// already cut off. nullopt when the frame is too short for its header and fixed fields.
std::optional<scan::RawBssFacts> decodeBeaconOrProbeResponse(const std::uint8_t* frame, std::size_t length);

} // namespace platform::capture
