#pragma once

#include "platform/sim/simulated_access_point.h"

#include <cstdint>
#include <vector>

// The access points of a simulated neighbourhood, drawn from a seed: the same seed and size
// always give the same networks. The first networks are fixed so that even a small world shows
// every kind of network a scanner must handle; the rest are varied draws.
namespace platform::sim {

constexpr std::uint64_t defaultSimulationSeed = 20240601;
constexpr int defaultAccessPointCount = 40;
constexpr int maximumAccessPointCount = 5000;

class AccessPointPopulation {
public:
    // count is clamped to 1..maximumAccessPointCount.
    AccessPointPopulation(std::uint64_t seed, int count);

    const std::vector<SimulatedAccessPoint>& accessPoints() const { return accessPoints_; }
    // The access point the interface is associated with at start.
    std::size_t homeIndex() const { return homeIndex_; }

private:
    std::vector<SimulatedAccessPoint> accessPoints_;
    std::size_t homeIndex_ = 0;
};

} // namespace platform::sim
