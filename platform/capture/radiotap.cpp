#include "platform/capture/radiotap.h"

#include "platform/capture/little_endian.h"

#include <array>
#include <bit>

namespace platform::capture {
namespace {

struct FieldLayout {
    std::uint8_t align = 0;  // 0: a bit whose field size nobody can know
    std::uint8_t size = 0;
};

// Alignment and size of every defined field of the radiotap namespace, by bit number.
constexpr std::array<FieldLayout, 28> kFieldLayouts{{
    {8, 8},   // 0 TSFT
    {1, 1},   // 1 Flags
    {1, 1},   // 2 Rate
    {2, 4},   // 3 Channel
    {1, 2},   // 4 FHSS
    {1, 1},   // 5 dBm antenna signal
    {1, 1},   // 6 dBm antenna noise
    {2, 2},   // 7 lock quality
    {2, 2},   // 8 TX attenuation
    {2, 2},   // 9 dB TX attenuation
    {1, 1},   // 10 dBm TX power
    {1, 1},   // 11 antenna
    {1, 1},   // 12 dB antenna signal
    {1, 1},   // 13 dB antenna noise
    {2, 2},   // 14 RX flags
    {2, 2},   // 15 TX flags
    {1, 1},   // 16 RTS retries
    {1, 1},   // 17 data retries
    {4, 8},   // 18 XChannel
    {1, 3},   // 19 MCS
    {4, 8},   // 20 A-MPDU status
    {2, 12},  // 21 VHT
    {8, 12},  // 22 timestamp
    {2, 12},  // 23 HE
    {2, 12},  // 24 HE-MU
    {0, 0},   // 25 undefined
    {1, 1},   // 26 0-length PSDU
    {2, 4},   // 27 L-SIG
}};

constexpr unsigned kBitFlags = 1;
constexpr unsigned kBitChannel = 3;
constexpr unsigned kBitSignal = 5;
constexpr unsigned kBitNoise = 6;
constexpr std::uint32_t kRadiotapNamespaceNext = 1u << 29;
constexpr std::uint32_t kVendorNamespaceNext = 1u << 30;
constexpr std::uint32_t kExtended = 1u << 31;
// After this bit only TLVs follow, so no fixed field can be located past it.
constexpr std::uint32_t kTlvsFollow = 1u << 28;
constexpr std::uint32_t kFieldBits = kTlvsFollow - 1;
constexpr std::uint32_t kWantedBits =
    (1u << kBitFlags) | (1u << kBitChannel) | (1u << kBitSignal) | (1u << kBitNoise);

constexpr std::uint8_t kFlagFcsAtEnd = 0x10;
constexpr std::size_t kFixedHeaderLength = 8;
constexpr std::size_t kVendorNamespaceFieldLength = 6;

constexpr std::size_t alignUp(std::size_t offset, std::size_t align)
{
    return (offset + align - 1) & ~(align - 1);
}

void takeField(unsigned bit, const std::uint8_t* field, RadiotapFields& out)
{
    switch (bit) {
    case kBitFlags:
        out.frameEndsWithFcs = (field[0] & kFlagFcsAtEnd) != 0;
        break;
    case kBitChannel:
        if (const int mhz = readLe16(field); mhz != 0)
            out.frequencyMhz = mhz;
        break;
    case kBitSignal:
        out.signalDbm = static_cast<std::int8_t>(field[0]);
        break;
    case kBitNoise:
        out.noiseDbm = static_cast<std::int8_t>(field[0]);
        break;
    default:
        break;
    }
}

} // namespace

std::optional<RadiotapFields> parseRadiotap(const std::uint8_t* data, std::size_t length)
{
    if (length < kFixedHeaderLength || data[0] != 0)
        return std::nullopt;
    const std::size_t headerLength = readLe16(data + 2);
    if (headerLength < kFixedHeaderLength || headerLength > length)
        return std::nullopt;

    // The field data starts after the last present bitmap, so all bitmaps are found first.
    std::size_t bitmapsEnd = 4;
    std::uint32_t present = 0;
    do {
        if (bitmapsEnd + 4 > headerLength)
            return std::nullopt;
        present = readLe32(data + bitmapsEnd);
        bitmapsEnd += 4;
    } while (present & kExtended);

    RadiotapFields out;
    out.headerLength = headerLength;
    std::size_t offset = bitmapsEnd;
    bool inRadiotapNamespace = true;
    unsigned firstBitOfWord = 0;  // bit numbers restart at every namespace switch
    std::uint32_t found = 0;

    for (std::size_t word = 4; word < bitmapsEnd; word += 4) {
        present = readLe32(data + word);
        if (inRadiotapNamespace) {
            std::uint32_t fields = present & kFieldBits;
            while (fields != 0) {
                const unsigned bit = firstBitOfWord + static_cast<unsigned>(std::countr_zero(fields));
                fields &= fields - 1;
                // An unknown field hides where every later one starts.
                if (bit >= kFieldLayouts.size() || kFieldLayouts[bit].align == 0)
                    return out;
                const FieldLayout layout = kFieldLayouts[bit];
                offset = alignUp(offset, layout.align);
                if (offset + layout.size > headerLength)
                    return out;
                const std::uint32_t mask = (1u << bit) & kWantedBits;
                if (mask != 0 && (found & mask) == 0) {
                    takeField(bit, data + offset, out);
                    found |= mask;
                    if (found == kWantedBits)
                        return out;
                }
                offset += layout.size;
            }
            if (present & kTlvsFollow)
                return out;
        }
        if (present & kVendorNamespaceNext) {
            // No vendor namespace is understood, so its data is skipped whole.
            offset = alignUp(offset, 2);
            if (offset + kVendorNamespaceFieldLength > headerLength)
                return out;
            offset += kVendorNamespaceFieldLength + readLe16(data + offset + 4);
            inRadiotapNamespace = false;
            firstBitOfWord = 0;
        } else if (present & kRadiotapNamespaceNext) {
            inRadiotapNamespace = true;
            firstBitOfWord = 0;
        } else {
            firstBitOfWord += 32;
        }
    }
    return out;
}

} // namespace platform::capture
