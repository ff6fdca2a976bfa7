#pragma once

#include <array>

namespace scan {
class ScanedResultInfo;
}

// Where an access point's flat-topped curve stands on a channel graph: the frequencies (MHz)
// of its four points, floor-top-top-floor. The curves follow the channel width and the side
// of the secondary channel, with the uneven corners of the established drawing kept on
// purpose so that pictures compare with earlier ones.
namespace graphs {

using ChannelShapeX = std::array<double, 4>;

// The secondary channel lies below the primary one only for this offset.
inline constexpr long long secondaryBelow = -1;

ChannelShapeX channelShape24GHz(const scan::ScanedResultInfo& record);
ChannelShapeX channelShape5GHz(const scan::ScanedResultInfo& record);

} // namespace graphs
