#pragma once

#include "platform/sim/simulated_access_point.h"

#include <cstdint>
#include <optional>

// How fast a two-stream client talks to an access point at a given signal and noise: the rate
// adaptation of a real driver, reduced to picking the modulation the SNR allows.
namespace platform::sim {

struct LinkStatistics {
    int phyMode = 0;              // PhyModeCode
    double transmitRateMbps = 0.0;
    std::optional<int> mcsIndex;  // HT numbering (0-31) or VHT numbering (0-9); none for legacy rates
    std::optional<int> spatialStreams;
    bool shortGuardInterval = false;
    int channelWidthMhz = 20;
};

// jitterBits varies the choice by one step either way, as rate control probes.
LinkStatistics linkStatisticsFor(const SimulatedAccessPoint& ap, int rssiDbm, int noiseDbm, std::uint64_t jitterBits);

} // namespace platform::sim
