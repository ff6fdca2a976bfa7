#pragma once

#include "graphs/graph_style.h"
#include "scan/scaned_result_info.h"

#include <QList>
#include <QMap>
#include <QObject>

#include <optional>

namespace scanning {
class WiFiScanTest;
}

// The data of the signal rank graph: one bar per access point, strongest first, coloured by
// whether it is the connected, selected or hovered network or shares its name, and the three
// labels above the bars naming those networks.
namespace graphs {

struct RankBar {
    QString bssid;
    double location = 0.0;
    double tip = 0.0;
    ColourCode fill;
};

// The bar plot's fixed look and the texts around it.
struct RankFrame {
    double barBase = signalFloorDbm;
    double barOffset = 1.0;
    double barOutlineWidth = 0.5;
    QString best = QStringLiteral("Best");
    QString worst = QStringLiteral("Worst");
    QString title = QStringLiteral("Signal Rank");
    FontSpec labelFont{QStringLiteral("Oswald"), 23.0};
    FontSpec endFont{QStringLiteral("Oswald"), 12.0};
    FontSpec titleFont{QStringLiteral("Oswald"), 14.0};
    ColourCode selectedLabelColour{0.0, 113.0 / 255.0, 187.0 / 255.0, 1.0};
    ColourCode hoveredLabelColour{0.5, 0.5, 0.5, 1.0};
    ColourCode activeLabelColour{1.0, 1.0, 0.0, 1.0};
};

// Each names its network as "SSID    signal ", or is empty.
struct RankLabels {
    QString selected;
    QString hovered;
    QString active;
};

class SignalRankModel : public QObject {
    Q_OBJECT
public:
    static constexpr double emptySlots = 10.0;

    explicit SignalRankModel(GraphTheme theme = {}, QObject* parent = nullptr);

    void addPlotToGraph(const QString& bssid, const scan::ScanedResultInfo& record);
    void updateGraphDataPoints(const scan::ScanedResultInfo& record, const QString& bssid);
    void removePlotFromGraph(const QString& bssid);
    // Follows the test's connected network; with nothing stored, forgets selection and hover.
    void reloadGraph(const scanning::WiFiScanTest* test);
    void highlightGraph(const QString& bssid, const scanning::WiFiScanTest& test);
    void clearGraph();
    void scanDidStartedByUser(const scanning::WiFiScanTest& test);
    // The bar under the mouse; a negative index means none.
    void hoverBar(int index);

    // Records by signal, strongest first; equal signals in BSSID order.
    const QList<scan::ScanedResultInfo>& graphDataArray() const;
    QList<RankBar> bars() const;
    std::optional<ColourCode> barFill(int index) const;
    RankLabels labels() const;
    GraphLayout layout() const;
    static RankFrame frame() { return RankFrame{}; }
    QString activeBSSID() const { return activeBSSID_; }

signals:
    void changed();

private:
    // Marks the order stale: a scan adds or updates every network one by one, and sorting after
    // each would cost the GUI thread seconds with thousands of networks. Readers sort once.
    void sortScanResultsByRSSI();
    void sortIfStale() const;
    QString labelFor(const QString& bssid) const;

    GraphTheme theme_;
    // Room for nearly sixty bars until the first network arrives.
    mutable double xLength_ = 59.0;
    QMap<QString, scan::ScanedResultInfo> graphDataDictionary_;
    mutable QList<scan::ScanedResultInfo> graphDataArray_;
    mutable bool orderStale_ = false;
    QString testActiveBSSID_;
    QString visibleBSSID_;
    QString hoverBSSID_;
    QString activeBSSID_;
};

} // namespace graphs
