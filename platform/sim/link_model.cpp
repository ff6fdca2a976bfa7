#include "platform/sim/link_model.h"

#include "core/units.h"
#include "platform/api/wireless_types.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace platform::sim {

namespace {

constexpr int clientStreams = 2;

// Coded bits per subcarrier for MCS 0-9.
constexpr std::array<double, 10> bitsPerSubcarrier = {0.5, 1.0, 1.5, 2.0, 3.0, 4.0, 4.5, 5.0, 6.0, 20.0 / 3.0};

int dataSubcarriers(int widthMhz)
{
    switch (widthMhz) {
    case 40: return 108;
    case 80: return 234;
    case 160: return 468;
    default: return 52;
    }
}

double mcsRate(int mcs, int streams, int widthMhz, bool shortGi)
{
    const double symbolMicroseconds = shortGi ? 3.6 : 4.0;
    const double rate = streams * dataSubcarriers(widthMhz) * bitsPerSubcarrier[static_cast<std::size_t>(mcs)] / symbolMicroseconds;
    return std::round(rate * 10.0) / 10.0;
}

int jitterStep(std::uint64_t bits) { return static_cast<int>(bits % 3) - 1; }

} // namespace

LinkStatistics linkStatisticsFor(const SimulatedAccessPoint& ap, int rssiDbm, int noiseDbm, std::uint64_t jitterBits)
{
    LinkStatistics link;
    const int snr = rssiDbm - noiseDbm;
    const bool band24 = core::is24GhzChannel(ap.channel);

    if (ap.legacyOnly) {
        static constexpr std::array<double, 8> ofdmRates = {6, 9, 12, 18, 24, 36, 48, 54};
        link.phyMode = band24 ? PhyMode11g : PhyMode11a;
        const int step = std::clamp((snr - 6) / 3 + jitterStep(jitterBits), 0, 7);
        link.transmitRateMbps = ofdmRates[static_cast<std::size_t>(step)];
        return link;
    }

    const bool vht = ap.vhtCapable;
    link.phyMode = vht ? PhyMode11ac : PhyMode11n;
    link.channelWidthMhz = vht ? ap.widthMhz : std::min(ap.widthMhz, 40);
    link.shortGuardInterval = ap.shortGi;
    // A second stream needs a clean channel.
    const int streams = std::min({ap.spatialStreams, clientStreams, snr >= 25 ? 2 : 1});
    link.spatialStreams = streams;
    // VHT-MCS 9 does not exist at 20 MHz for one or two streams.
    const int highest = vht ? (link.channelWidthMhz == 20 ? 8 : 9) : 7;
    const int mcs = std::clamp((snr - 10) / 4 + jitterStep(jitterBits), 0, highest);
    link.mcsIndex = vht ? mcs : (streams - 1) * 8 + mcs;
    link.transmitRateMbps = mcsRate(mcs, streams, link.channelWidthMhz, link.shortGuardInterval);
    return link;
}

} // namespace platform::sim
