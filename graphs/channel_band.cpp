#include "graphs/channel_band.h"

namespace graphs {

namespace {

AxisLabel channelLabel(int channel, double centreMhz)
{
    return AxisLabel{QString::number(channel), centreMhz};
}

ChannelBand make24GHz()
{
    ChannelBand band;
    band.frequencyRange = {2400.0, 100.0};
    band.frequencyTitle = QStringLiteral("2.4 GHz WiFi Frequency");
    band.frequencyMajorInterval = 10.0;
    band.channelTitle = QStringLiteral("2.4 GHz Channels");
    band.channelTitleOffset = 15.0;
    for (int channel = 1; channel <= 13; ++channel)
        band.channelLabels.append(channelLabel(channel, 2407.0 + 5.0 * channel));
    // Channel 14 sits apart from the 5 MHz raster.
    band.channelLabels.append(channelLabel(14, 2484.0));
    band.bottomPadding = 45.0;
    band.imageFileName = QStringLiteral("/2-4ghzGRAPH.png");
    band.shape = &channelShape24GHz;
    return band;
}

ChannelBand make5GHz()
{
    ChannelBand band;
    band.frequencyRange = {5150.0, 700.0};
    band.frequencyTitle = QStringLiteral("5 GHz WiFi Frequency");
    band.frequencyMajorInterval = 50.0;
    band.channelTitle = QStringLiteral("5 GHz Channels");
    band.channelTitleOffset = 18.0;
    const int channels[] = {34, 36, 38, 40, 42, 44, 46, 48, 52, 56, 60, 64, 100, 104,
                            108, 112, 116, 120, 124, 128, 132, 136, 140, 149, 153, 157, 161, 165};
    for (int channel : channels)
        band.channelLabels.append(channelLabel(channel, 5000.0 + 5.0 * channel));
    band.bottomPadding = 50.0;
    band.imageFileName = QStringLiteral("/5ghzGRAPH.png");
    band.shape = &channelShape5GHz;
    return band;
}

} // namespace

const ChannelBand& ChannelBand::band24GHz()
{
    static const ChannelBand band = make24GHz();
    return band;
}

const ChannelBand& ChannelBand::band5GHz()
{
    static const ChannelBand band = make5GHz();
    return band;
}

} // namespace graphs
