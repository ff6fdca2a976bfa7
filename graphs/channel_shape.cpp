#include "graphs/channel_shape.h"

#include "scan/scaned_result_info.h"

namespace graphs {

ChannelShapeX channelShape24GHz(const scan::ScanedResultInfo& record)
{
    const int k = record.channel.toInt() == 14 ? record.originalChannel + 13 : record.originalChannel - 1;
    const double b = 5.0 * k;
    const int width = record.channelWidth;
    if (record.channelOffset == secondaryBelow) {
        // At 20 MHz the left side is vertical: point 1 stands on point 0.
        const double foot = width == 40 ? 2381 : width == 80 ? 2357 : 2401;
        const double top = width == 40 ? 2383 : width == 80 ? 2361 : 2401;
        return {b + foot, b + top, b + 2421, b + 2423};
    }
    // At 80 MHz the right foot lies 44 beyond the 20 MHz one but the top corner only 40.
    const double top = width == 40 ? 2441 : width == 80 ? 2461 : 2421;
    const double foot = width == 40 ? 2443 : width == 80 ? 2467 : 2423;
    return {b + 2401, b + 2403, b + top, b + foot};
}

ChannelShapeX channelShape5GHz(const scan::ScanedResultInfo& record)
{
    const double f = 5.0 * record.originalChannel;
    const int width = record.channelWidth;
    if (record.channelOffset == secondaryBelow) {
        switch (width) {
        case 20: return {f + 4990, f + 4992, f + 5007, f + 5010};
        case 40: return {f + 4970, f + 4974, f + 5007, f + 5010};
        case 80: return {f + 4940, f + 4945, f + 5055, f + 5060};
        case 160: return {f + 4860, f + 4863, f + 5137, f + 5140};
        default: return {f + 5000, f + 5000, f + 5000, f + 5000};
        }
    }
    switch (width) {
    case 20: return {f + 4990, f + 4992, f + 5008, f + 5010};
    case 40: return {f + 4990, f + 4995, f + 5026, f + 5030};
    case 80: return {f + 4990, f + 4995, f + 5065, f + 5070};
    case 160: return {f + 4990, f + 4998, f + 5144, f + 5150};
    default: return {f + 4990, f + 4995, f + 5008, f + 5010};
    }
}

} // namespace graphs
