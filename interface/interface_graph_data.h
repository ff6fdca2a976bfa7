#pragma once

#include "interface/interface_samples.h"

#include <QDateTime>
#include <QList>
#include <QPointF>
#include <QString>

#include <optional>

// The interface graph's data: signal and noise against seconds before the newest sample, and
// what the hover annotation says about the sample under the mouse.
namespace connection {

struct InterfaceGraphData {
    QList<QPointF> signal;
    QList<QPointF> noise;
    // The moment x = 0 stands for; the time-of-day labels count from it.
    QDateTime newest;
};

InterfaceGraphData interfaceGraphData(const QList<InterfaceSample>& samples);

// The sample nearest to x (seconds, 0 the newest) within maxDistance; nothing when there is none.
std::optional<qsizetype> sampleNearest(const InterfaceGraphData& data, double x, double maxDistance);

// "Signal: -55 dBm" and "Noise: -92 dBm" with the sample's time of day.
QString hoverText(const InterfaceGraphData& data, qsizetype index);

} // namespace connection
