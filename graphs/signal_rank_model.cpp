#include "graphs/signal_rank_model.h"

#include "scan/scanner_utils.h"
#include "scanning/wifi_scan_test.h"

#include <algorithm>

namespace graphs {

namespace {

const ColourCode connectedColour{1.0, 1.0, 0.0, 1.0};
const ColourCode connectedNameColour{1.0, 1.0, 0.0, 0.5};
const ColourCode selectedColour{0.0, 113.0 / 255.0, 187.0 / 255.0, 1.0};
const ColourCode selectedNameColour{0.0, 113.0 / 255.0, 187.0 / 255.0, 0.5};
const ColourCode hoveredColour{0.5, 0.5, 0.5, 1.0};
const ColourCode hoveredNameColour{128.0 / 255.0, 128.0 / 255.0, 128.0 / 255.0, 0.8};
const ColourCode otherColour{69.0 / 255.0, 69.0 / 255.0, 69.0 / 255.0, 1.0};

// A name with right-to-left letters or direction overrides would otherwise carry the signal figure
// after it along (a U+202E name shows -50 as "05-"); first-strong isolation keeps it to itself.
QString isolatedName(const QString& ssid)
{
    const bool turns = std::any_of(ssid.cbegin(), ssid.cend(), [](QChar c) {
        switch (c.direction()) {
        case QChar::DirR: case QChar::DirAL: case QChar::DirRLE: case QChar::DirRLO: case QChar::DirLRE:
        case QChar::DirLRO: case QChar::DirPDF: case QChar::DirRLI: case QChar::DirLRI: case QChar::DirFSI:
        case QChar::DirPDI:
            return true;
        default:
            return false;
        }
    });
    return turns ? QChar(0x2068) + ssid + QChar(0x2069) : ssid;
}

} // namespace

SignalRankModel::SignalRankModel(GraphTheme theme, QObject* parent) : QObject(parent), theme_(theme) {}

void SignalRankModel::addPlotToGraph(const QString& bssid, const scan::ScanedResultInfo& record)
{
    graphDataDictionary_.insert(bssid, record);
    if (activeBSSID_.isEmpty() && !testActiveBSSID_.isEmpty() && bssid == testActiveBSSID_)
        activeBSSID_ = bssid;
    sortScanResultsByRSSI();
}

void SignalRankModel::updateGraphDataPoints(const scan::ScanedResultInfo& record, const QString& bssid)
{
    addPlotToGraph(bssid, record);
}

void SignalRankModel::removePlotFromGraph(const QString& bssid)
{
    graphDataDictionary_.remove(bssid);
    if (bssid == activeBSSID_)
        activeBSSID_.clear();
    sortScanResultsByRSSI();
}

void SignalRankModel::sortScanResultsByRSSI()
{
    orderStale_ = true;
    emit changed();
}

void SignalRankModel::sortIfStale() const
{
    if (!orderStale_)
        return;
    orderStale_ = false;
    graphDataArray_ = graphDataDictionary_.values();
    // The map hands the records over in BSSID order, so ties stay in that order.
    std::stable_sort(graphDataArray_.begin(), graphDataArray_.end(),
                     [](const scan::ScanedResultInfo& a, const scan::ScanedResultInfo& b) { return a.rssi > b.rssi; });
    xLength_ = static_cast<double>(graphDataArray_.size()) + emptySlots;
}

const QList<scan::ScanedResultInfo>& SignalRankModel::graphDataArray() const
{
    sortIfStale();
    return graphDataArray_;
}

void SignalRankModel::reloadGraph(const scanning::WiFiScanTest* test)
{
    if (test) {
        testActiveBSSID_ = test->activeBSSID;
        activeBSSID_ = test->activeBSSID;
    }
    if (graphDataDictionary_.isEmpty()) {
        visibleBSSID_.clear();
        hoverBSSID_.clear();
    }
    emit changed();
}

void SignalRankModel::highlightGraph(const QString& bssid, const scanning::WiFiScanTest& test)
{
    visibleBSSID_ = bssid;
    testActiveBSSID_ = test.activeBSSID;
    if (!scan::ScannerUtils::hasValue(test.activeBSSID))
        activeBSSID_.clear();
    emit changed();
}

void SignalRankModel::clearGraph()
{
    graphDataDictionary_.clear();
    graphDataArray_.clear();
    orderStale_ = false;
    visibleBSSID_.clear();
    hoverBSSID_.clear();
    activeBSSID_.clear();
    emit changed();
}

void SignalRankModel::scanDidStartedByUser(const scanning::WiFiScanTest& test) { testActiveBSSID_ = test.activeBSSID; }

void SignalRankModel::hoverBar(int index)
{
    const QList<scan::ScanedResultInfo>& ranked = graphDataArray();
    hoverBSSID_ = index >= 0 && index < ranked.size() ? ranked.at(index).bssid : QString();
    emit changed();
}

std::optional<ColourCode> SignalRankModel::barFill(int index) const
{
    const QList<scan::ScanedResultInfo>& ranked = graphDataArray();
    if (index < 0 || index >= ranked.size())
        return std::nullopt;
    const scan::ScanedResultInfo& bar = ranked.at(index);
    const auto ssidOf = [this](const QString& bssid) -> std::optional<QString> {
        const auto it = graphDataDictionary_.constFind(bssid);
        return bssid.isEmpty() || it == graphDataDictionary_.cend() ? std::nullopt : std::optional(it->ssid);
    };
    if (!activeBSSID_.isEmpty() && bar.bssid == activeBSSID_)
        return connectedColour;
    if (!visibleBSSID_.isEmpty() && bar.bssid == visibleBSSID_)
        return selectedColour;
    if (!hoverBSSID_.isEmpty() && bar.bssid == hoverBSSID_)
        return hoveredColour;
    if (ssidOf(activeBSSID_) == bar.ssid)
        return connectedNameColour;
    if (ssidOf(hoverBSSID_) == bar.ssid)
        return hoveredNameColour;
    if (ssidOf(visibleBSSID_) == bar.ssid)
        return selectedNameColour;
    return otherColour;
}

QList<RankBar> SignalRankModel::bars() const
{
    QList<RankBar> bars;
    const QList<scan::ScanedResultInfo>& ranked = graphDataArray();
    for (int i = 0; i < ranked.size(); ++i) {
        const scan::ScanedResultInfo& record = ranked.at(i);
        bars.append(RankBar{record.bssid, static_cast<double>(i), static_cast<double>(record.rssi), *barFill(i)});
    }
    return bars;
}

QString SignalRankModel::labelFor(const QString& bssid) const
{
    const auto it = graphDataDictionary_.constFind(bssid);
    if (bssid.isEmpty() || it == graphDataDictionary_.cend())
        return {};
    // One arg() call: a "%1" in a broadcast name is not a place for the signal figure.
    return QStringLiteral("%1    %2 ").arg(isolatedName(it->ssid), QString::number(it->rssi));
}

RankLabels SignalRankModel::labels() const
{
    return RankLabels{labelFor(visibleBSSID_), labelFor(hoverBSSID_), labelFor(activeBSSID_)};
}

GraphLayout SignalRankModel::layout() const
{
    GraphLayout layout;
    sortIfStale();
    layout.xRange = ValueRange{0.0, xLength_};
    layout.plotAreaPadding = Padding{15.0, 15.0, 30.0, 55.0};
    layout.xAxis = AxisSpec{QStringLiteral("Found Networks"), 0.0, 0.0, 1.0, {}};
    layout.yAxis = AxisSpec{QStringLiteral("RSSI (dBm)"), 30.0, 5.0, std::nullopt, {}};
    layout.theme = theme_;
    layout.gridLines = false;
    return layout;
}

} // namespace graphs
