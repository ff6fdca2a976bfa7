#include "interface/interface_graph_data.h"

#include <cmath>

namespace connection {

InterfaceGraphData interfaceGraphData(const QList<InterfaceSample>& samples)
{
    InterfaceGraphData data;
    if (samples.isEmpty())
        return data;
    data.newest = samples.first().lastSeen;
    data.signal.reserve(samples.size());
    data.noise.reserve(samples.size());
    for (const InterfaceSample& sample : samples) {
        const double x = -static_cast<double>(sample.lastSeen.msecsTo(data.newest)) / 1000.0;
        data.signal.append({x, static_cast<double>(sample.rssi)});
        data.noise.append({x, static_cast<double>(sample.noise)});
    }
    return data;
}

std::optional<qsizetype> sampleNearest(const InterfaceGraphData& data, double x, double maxDistance)
{
    std::optional<qsizetype> nearest;
    double best = maxDistance;
    for (qsizetype i = 0; i < data.signal.size(); ++i) {
        const double distance = std::abs(data.signal.at(i).x() - x);
        if (distance <= best) {
            best = distance;
            nearest = i;
        }
    }
    return nearest;
}

QString hoverText(const InterfaceGraphData& data, qsizetype index)
{
    const QPointF signal = data.signal.value(index);
    const QPointF noise = data.noise.value(index);
    const QDateTime at = data.newest.addMSecs(static_cast<qint64>(std::llround(signal.x() * 1000.0)));
    return QStringLiteral("Signal: %1 dBm\nNoise: %2 dBm\n%3")
        .arg(static_cast<int>(signal.y()))
        .arg(static_cast<int>(noise.y()))
        .arg(at.toLocalTime().toString(QStringLiteral("hh:mm:ss")));
}

} // namespace connection
