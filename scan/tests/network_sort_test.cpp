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
        ComparisonResult order;
        int leftCode;
    } cases[] = {
        {PhyA | PhyN, PhyB | PhyG | PhyN, G::Later, ComparisonResult::Same, 4},
        {PhyA | PhyG, PhyB | PhyG, G::Later, ComparisonResult::Same, 3},
        {PhyB | PhyG | PhyN, PhyAC, G::Later, ComparisonResult::Ascending, 4},
        {PhyN, PhyB, G::Later, ComparisonResult::Descending, 4},
        {0, PhyA, G::Later, ComparisonResult::Ascending, -1},
        // The oldest generation has no code for ac: such a network shows n.
        {PhyN | PhyAC, PhyA | PhyN, G::OldestRelease, ComparisonResult::Same, 3},
        {PhyA, PhyB, G::OldestRelease, ComparisonResult::Ascending, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(comparePhyMode(network(c.left), network(c.right), c.generation), c.order) << c.left << " " << c.right;
        EXPECT_EQ(phyModeCode(network(c.left), c.generation), c.leftCode) << c.left;
    }
}

} // namespace
