#pragma once

#include <QList>
#include <QPointF>
#include <QString>

#include <optional>

// The monitor graph's history: the last 13 signal and noise values, newest first, and the
// points they make with the newest at 0 seconds and the oldest twelve intervals back.
namespace monitor {

class GraphPlotDataSource {
public:
    static constexpr int maxPoints = 13;
    static constexpr const char* signalPlotId = "rssiSignalMonitorGraph";
    static constexpr const char* noisePlotId = "noiseSignalMonitorGraph";

    // A signal value as text; empty or unreadable text adds nothing.
    void addDataPoint(const QString& text);
    void addNoiseDataPoint(int noise);
    void removeAllDataPoint();
    void removeAllScanedDataPoint();

    std::optional<double> dataAtIndex(int index) const;
    std::optional<int> scanedDataAtIndex(int index) const;
    // Noise values added since the counter was last reset, never past a full list.
    int curretIndex() const { return curretIndex_; }

    int refreshInterval() const { return refreshInterval_; }
    void setRefreshInterval(int seconds) { refreshInterval_ = seconds; }

    // The noise plot reads the noise list, every other plot the signal list.
    int numberOfRecordsForPlot(const QString& plot) const;
    // Records location .. location + length - 1, clipped to the list: x = refreshInterval × i.
    QList<QPointF> numbersForPlot(const QString& plot, int location, int length) const;

    const QList<double>& dataPoints() const { return dataPoints_; }
    const QList<int>& noiseDataPoints() const { return noiseDataPoints_; }

private:
    QList<double> dataPoints_;
    QList<int> noiseDataPoints_;
    int curretIndex_ = 0;
    int refreshInterval_ = 0;
};

} // namespace monitor
