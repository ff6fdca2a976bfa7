#pragma once

#include "scan/scan_result_derivation.h"

#include <cstddef>
#include <cstdint>
#include <optional>

// Turns one captured packet into the facts of a beacon or probe response. parsePacket
// (capture_reader.h) is this with nothing cut off by the capture's snapshot length.
namespace platform::capture {

// wireLength is the packet's length on the air: when the capture kept fewer bytes, the FCS is
// partly or wholly missing and must not be cut from the bytes that are there.
std::optional<scan::RawBssFacts> decodePacket(int linkType, const std::uint8_t* data,
                                        std::size_t capturedLength, std::size_t wireLength);

} // namespace platform::capture
