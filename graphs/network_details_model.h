#pragma once

#include "graphs/graph_style.h"
#include "scan/scaned_result_info.h"

#include <QList>
#include <QObject>
#include <QPointF>

#include <optional>

namespace scanning {
class WiFiScanTest;
}
namespace core {
class UserSettings;
}

// The data of the network details tab: signal and noise of the one examined access point over
// its last samples, and the texts shown beside the graph.
namespace graphs {

struct DetailsLine {
    QString identifier;
    double lineWidth = 3.0;
    ColourCode lineColour;
    PointSymbol symbol;
    Gradient areaFill;
    double areaBase = signalFloorDbm;
    double hitMargin = 5.0;
    QList<QPointF> points;
};

struct DetailsTexts {
    QString channel;
    QString dataRates;
    QString snr;
    QString streams;
};

class NetworkDetailsModel : public QObject {
    Q_OBJECT
public:
    static constexpr int maxSamples = 25;
    static constexpr const char* signalPlotId = "Signal";
    static constexpr const char* noisePlotId = "Noise";

    NetworkDetailsModel(const core::UserSettings& settings, GraphTheme theme = {}, QObject* parent = nullptr);

    // Examines another access point (an empty BSSID examines none): its samples start anew,
    // its newest record from the test fills the texts.
    void highlightGraph(const QString& bssid, const scanning::WiFiScanTest& test);
    // A new sample; only the examined access point's count, and the oldest beyond 25 falls off.
    void updateGraphDataPoints(const QList<scan::ScanedResultInfo>& history, const QString& bssid);
    // The interface tab's connected network: examined if it is not yet, then sampled.
    void updateGraphDataPointsForConnectedSSID(const QString& bssid, const scanning::WiFiScanTest& test);
    void resetGraph();
    void refreshSettings();
    // Passed on to the samples window, which stops its beeping when scanning stops.
    void scanDidStartedByUser() { emit scanStarted(); }
    void scanDidStoppedByUser() { emit scanStopped(); }

    QString visibleBSSID() const { return visibleBSSID_; }
    const QList<scan::ScanedResultInfo>& sampledData() const { return sampledData_; }
    const std::optional<scan::ScanedResultInfo>& networkDetails() const { return networkDetails_; }
    DetailsTexts texts() const;
    // "SSID: %@" of the examined access point, the samples window's header.
    QString samplesHeader() const;

    GraphLayout layout() const;
    // The "Signal" and "Noise" lines, in that order.
    QList<DetailsLine> lines() const;
    // The one point of the signal-to-noise plot; none without samples.
    std::optional<QPointF> signalToNoisePoint() const;

signals:
    void changed();
    void annotationMoved(int index);
    void scanStarted();
    void scanStopped();

private:
    void addSample(const scan::ScanedResultInfo& newest);
    QList<QPointF> points(int scan::ScanedResultInfo::*field) const;

    const core::UserSettings& settings_;
    GraphTheme theme_;
    bool gridLines_ = true;
    QString visibleBSSID_;
    QList<scan::ScanedResultInfo> sampledData_;
    std::optional<scan::ScanedResultInfo> networkDetails_;
};

} // namespace graphs
