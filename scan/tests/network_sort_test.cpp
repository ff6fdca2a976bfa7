#include "scan/network_sort.h"

#include <gtest/gtest.h>

namespace {

platform::ScanResult network(std::uint32_t modes)
{
    platform::ScanResult result;
    result.phyModes = modes;
    return result;
}

// The order follows the code each network shows, the newest standard it supports, not its
// whole set of standards.
TEST(NetworkSort, PhyModeComparesTheShownCode)
{
    using namespace platform;
    using G = core::InterfaceGeneration;
    const struct {
        std::uint32_t left, right;
        G generation;
        scan::ComparisonResult order;
        int leftCode;
    } cases[] = {
        {PhyA | PhyN, PhyB | PhyG | PhyN, G::Later, scan::ComparisonResult::Same, 4},
        {PhyA | PhyG, PhyB | PhyG, G::Later, scan::ComparisonResult::Same, 3},
        {PhyB | PhyG | PhyN, PhyAC, G::Later, scan::ComparisonResult::Ascending, 4},
        {PhyN, PhyB, G::Later, scan::ComparisonResult::Descending, 4},
        {0, PhyA, G::Later, scan::ComparisonResult::Ascending, -1},
        // The oldest generation has no code for ac: such a network shows n.
        {PhyN | PhyAC, PhyA | PhyN, G::OldestRelease, scan::ComparisonResult::Same, 3},
        {PhyA, PhyB, G::OldestRelease, scan::ComparisonResult::Ascending, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(scan::comparePhyMode(network(c.left), network(c.right), c.generation), c.order) << c.left << " " << c.right;
        EXPECT_EQ(scan::phyModeCode(network(c.left), c.generation), c.leftCode) << c.left;
    }
}

} // namespace
