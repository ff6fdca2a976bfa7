#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

// The Prism monitor header of link type 119: only its length matters, since its signal and
// noise values are not in dBm.
namespace platform::capture {

// Where the 802.11 frame starts; nullopt when the header does not fit the packet.
std::optional<std::size_t> prismHeaderLength(const std::uint8_t* data, std::size_t length);

} // namespace platform::capture
