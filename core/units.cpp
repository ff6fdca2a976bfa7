#include "core/units.h"

namespace core {

ChannelBand bandForChannel(int channel)
{
    if (channel <= 0)
        return ChannelBand::Unknown;
    return is24GhzChannel(channel) ? ChannelBand::Band2GHz : ChannelBand::Band5GHz;
}

double bandGhz(ChannelBand band, int channel)
{
    switch (band) {
    case ChannelBand::Band2GHz: return 2.4;
    case ChannelBand::Band5GHz: return 5.0;
    case ChannelBand::Unknown: break;
    }
    return is24GhzChannel(channel) ? 2.4 : 5.0;
}

int widthMhz(ChannelWidthCode code)
{
    switch (code) {
    case ChannelWidthCode::Width20MHz: return 20;
    case ChannelWidthCode::Width40MHz: return 40;
    case ChannelWidthCode::Width80MHz: return 80;
    case ChannelWidthCode::Width160MHz: return 160;
    case ChannelWidthCode::Unknown: break;
    }
    return 0;
}

ChannelWidthCode widthCodeForMhz(int widthMhz)
{
    switch (widthMhz) {
    case 40: return ChannelWidthCode::Width40MHz;
    case 80: return ChannelWidthCode::Width80MHz;
    case 160: return ChannelWidthCode::Width160MHz;
    default: return ChannelWidthCode::Width20MHz;
    }
}

} // namespace core
