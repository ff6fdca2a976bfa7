#include "platform/capture/prism.h"

#include "platform/capture/little_endian.h"

namespace platform::capture {

std::optional<std::size_t> prismHeaderLength(const std::uint8_t* data, std::size_t length)
{
    constexpr std::size_t kCodeAndLength = 8;
    if (length < kCodeAndLength)
        return std::nullopt;
    const std::size_t messageLength = readLe32(data + 4);
    if (messageLength < kCodeAndLength || messageLength > length)
        return std::nullopt;
    return messageLength;
}

} // namespace platform::capture
