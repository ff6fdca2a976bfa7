#pragma once

#include "graphs/channel_graph_model.h"
#include "graphs/network_details_model.h"
#include "graphs/signal_history_model.h"
#include "graphs/signal_rank_model.h"
#include "scanning/graph_sink.h"

#include <QObject>

namespace graphs {
class ColorCodesManager;
}
namespace core {
class UserSettings;
}

// The one way from the scan loop and the results table into the graph tabs: every call goes
// to the tabs it concerns, and the tab of a network's band comes forward when it is plotted.
namespace graphs {

enum class GraphTab { NetworkDetails = 0, SignalHistory = 1, Channels24GHz = 2, Channels5GHz = 3, SignalRank = 4 };

class GraphViewTabSet : public QObject, public scanning::GraphSink {
    Q_OBJECT
public:
    GraphViewTabSet(ColorCodesManager& colours, const core::UserSettings& settings, GraphTheme theme = {},
                    QObject* parent = nullptr);

    void addPlotToGraph(const QString& bssid, const QList<scan::ScanedResultInfo>& history) override;
    void updateGraphDataPoints(const QList<scan::ScanedResultInfo>& history, const QString& bssid) override;
    void removePlotFromGraph(const QString& bssid) override;
    void highlightGraph(const QString& bssid, const scanning::WiFiScanTest& test) override;
    void updateSSIDDetailsTab(const QString& bssid, const scanning::WiFiScanTest& test) override;
    void reloadGraph(const scanning::WiFiScanTest& test) override;
    void didRemoveAllPlots() override;
    void scanDidStartedByUser(const scanning::WiFiScanTest& test) override;
    void scanDidStoppedByUser() override;
    void clearGraph();
    void resetGraph();
    // Re-reads the graph switches after the user changed a setting.
    void refreshSettings();

    GraphTab selectedTab() const { return selectedTab_; }
    void selectTab(GraphTab tab);

    NetworkDetailsModel& networkDetails() { return networkDetails_; }
    SignalHistoryModel& signalHistory() { return signalHistory_; }
    ChannelGraphModel& channels24GHz() { return channels24GHz_; }
    ChannelGraphModel& channels5GHz() { return channels5GHz_; }
    SignalRankModel& signalRank() { return signalRank_; }

    // The band test of the tabs: exactly 2.4 is the 2.4 GHz band, anything else (an unknown
    // band too) is drawn with 5 GHz.
    static bool isBand24GHz(const scan::ScanedResultInfo& record);

signals:
    void tabSelected(graphs::GraphTab tab);

private:
    ChannelGraphModel& channelGraphFor(const scan::ScanedResultInfo& record);

    NetworkDetailsModel networkDetails_;
    SignalHistoryModel signalHistory_;
    ChannelGraphModel channels24GHz_;
    ChannelGraphModel channels5GHz_;
    SignalRankModel signalRank_;
    GraphTab selectedTab_ = GraphTab::NetworkDetails;
};

} // namespace graphs
