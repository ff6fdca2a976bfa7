#pragma once

#include <cstddef>
#include <cstdint>

// Recognises the 802.11 frame check sequence where the capture does not say whether it is kept.
namespace platform::capture {

constexpr std::size_t kFcsLength = 4;

// True when the last four bytes are the CRC-32 of the bytes before them.
bool endsWithValidFcs(const std::uint8_t* frame, std::size_t length);

} // namespace platform::capture
