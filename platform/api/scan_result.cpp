#include "platform/api/scan_result.h"


namespace platform {
namespace {

// Oldest generation numbers a, b, g, n from 0; the current one has "none" at 0 and adds ac.
std::uint32_t bitForCode(int code, core::InterfaceGeneration generation)
{
    if (core::isOSSnowLeopard(generation)) {
        switch (code) {
        case 0: return PhyA;
        case 1: return PhyB;
        case 2: return PhyG;
        case 3: return PhyN;
        default: return 0;
        }
    }
    switch (code) {
    case 1: return PhyA;
    case 2: return PhyB;
    case 3: return PhyG;
    case 4: return PhyN;
    case 5: return PhyAC;
    default: return 0;
    }
}

} // namespace

bool ScanResult::supportsPHYMode(int code, core::InterfaceGeneration generation) const
{
    const std::uint32_t bit = bitForCode(code, generation);
    return bit != 0 && (phyModes & bit) != 0;
}

} // namespace platform
