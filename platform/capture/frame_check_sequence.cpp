#include "platform/capture/frame_check_sequence.h"

#include "platform/capture/little_endian.h"

#include <zlib.h>

namespace platform::capture {

bool endsWithValidFcs(const std::uint8_t* frame, std::size_t length)
{
    if (length < kFcsLength)
        return false;
    const std::size_t covered = length - kFcsLength;
    const auto crc = crc32_z(0, frame, covered);
    return crc == readLe32(frame + covered);
}

} // namespace platform::capture
