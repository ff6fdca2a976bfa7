#include "monitor/graph_plot_data_source.h"

#include <QLocale>

#include <algorithm>

namespace monitor {

void GraphPlotDataSource::addDataPoint(const QString& text)
{
    if (text.isEmpty())
        return;
    bool ok = false;
    const double value = QLocale::c().toDouble(text.trimmed(), &ok);
    if (!ok)
        return;
    if (dataPoints_.size() >= maxPoints)
        dataPoints_.removeLast();
    dataPoints_.prepend(value);
}

void GraphPlotDataSource::addNoiseDataPoint(int noise)
{
    if (noiseDataPoints_.size() >= maxPoints)
        noiseDataPoints_.removeLast();
    else
        ++curretIndex_;
    noiseDataPoints_.prepend(noise);
}

void GraphPlotDataSource::removeAllDataPoint()
{
    dataPoints_.clear();
    curretIndex_ = 0;
}

void GraphPlotDataSource::removeAllScanedDataPoint()
{
    noiseDataPoints_.clear();
    curretIndex_ = 0;
}

std::optional<double> GraphPlotDataSource::dataAtIndex(int index) const
{
    if (index < 0 || index >= dataPoints_.size())
        return std::nullopt;
    return dataPoints_[index];
}

std::optional<int> GraphPlotDataSource::scanedDataAtIndex(int index) const
{
    if (index < 0 || index >= noiseDataPoints_.size())
        return std::nullopt;
    return noiseDataPoints_[index];
}

int GraphPlotDataSource::numberOfRecordsForPlot(const QString& plot) const
{
    return static_cast<int>(plot == QLatin1String(noisePlotId) ? noiseDataPoints_.size() : dataPoints_.size());
}

QList<QPointF> GraphPlotDataSource::numbersForPlot(const QString& plot, int location, int length) const
{
    const bool noise = plot == QLatin1String(noisePlotId);
    const int count = numberOfRecordsForPlot(plot);
    const int first = std::clamp(location, 0, count);
    const int end = std::clamp(location + std::max(length, 0), first, count);
    QList<QPointF> points;
    points.reserve(end - first);
    for (int i = first; i < end; ++i)
        points.append({static_cast<double>(refreshInterval_) * i, noise ? noiseDataPoints_[i] : dataPoints_[i]});
    return points;
}

} // namespace monitor
