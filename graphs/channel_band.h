#pragma once

#include "graphs/channel_shape.h"
#include "graphs/graph_style.h"

#include <QList>
#include <QString>

// Everything that tells the 2.4 GHz channel graph from the 5 GHz one; the graph itself is one
// design over this data.
namespace graphs {

struct ChannelBand {
    ValueRange frequencyRange;
    QString frequencyTitle;
    double frequencyMajorInterval = 0.0;
    QString channelTitle;
    double channelTitleOffset = 0.0;
    QList<AxisLabel> channelLabels;
    double bottomPadding = 0.0;
    QString imageFileName;
    ChannelShapeX (*shape)(const scan::ScanedResultInfo&) = nullptr;

    static const ChannelBand& band24GHz();
    static const ChannelBand& band5GHz();
};

} // namespace graphs
