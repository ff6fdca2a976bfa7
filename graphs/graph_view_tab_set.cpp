#include "graphs/graph_view_tab_set.h"

#include "scanning/wifi_scan_test.h"

namespace graphs {

GraphViewTabSet::GraphViewTabSet(ColorCodesManager& colours, const core::UserSettings& settings, GraphTheme theme,
                                 QObject* parent)
    : QObject(parent),
      networkDetails_(settings, theme),
      signalHistory_(colours, settings, theme),
      channels24GHz_(ChannelBand::band24GHz(), colours, settings, theme),
      channels5GHz_(ChannelBand::band5GHz(), colours, settings, theme),
      signalRank_(theme)
{
}

bool GraphViewTabSet::isBand24GHz(const scan::ScanedResultInfo& record) { return record.channelBond == 2.4; }

ChannelGraphModel& GraphViewTabSet::channelGraphFor(const scan::ScanedResultInfo& record)
{
    return isBand24GHz(record) ? channels24GHz_ : channels5GHz_;
}

void GraphViewTabSet::selectTab(GraphTab tab)
{
    if (tab == selectedTab_)
        return;
    selectedTab_ = tab;
    emit tabSelected(tab);
}

void GraphViewTabSet::addPlotToGraph(const QString& bssid, const QList<scan::ScanedResultInfo>& history)
{
    if (history.isEmpty())
        return;
    const scan::ScanedResultInfo& newest = history.first();
    signalHistory_.addPlotToGraph(bssid, history);
    channelGraphFor(newest).addPlotToGraph(bssid, newest);
    // A newly plotted network should be seen: the band tab showing flips to the network's band.
    if (isBand24GHz(newest) && selectedTab_ == GraphTab::Channels5GHz)
        selectTab(GraphTab::Channels24GHz);
    else if (!isBand24GHz(newest) && selectedTab_ == GraphTab::Channels24GHz)
        selectTab(GraphTab::Channels5GHz);
    signalRank_.addPlotToGraph(bssid, newest);
}

void GraphViewTabSet::updateGraphDataPoints(const QList<scan::ScanedResultInfo>& history, const QString& bssid)
{
    if (history.isEmpty())
        return;
    const scan::ScanedResultInfo& newest = history.first();
    signalHistory_.updateGraphDataPoints(history, bssid);
    channelGraphFor(newest).updateGraphDataPoints(newest, bssid);
    signalRank_.updateGraphDataPoints(newest, bssid);
    networkDetails_.updateGraphDataPoints(history, bssid);
}

void GraphViewTabSet::removePlotFromGraph(const QString& bssid)
{
    signalHistory_.removePlotFromGraph(bssid);
    channels24GHz_.removePlotFromGraph(bssid);
    channels5GHz_.removePlotFromGraph(bssid);
    signalRank_.removePlotFromGraph(bssid);
}

void GraphViewTabSet::highlightGraph(const QString& bssid, const scanning::WiFiScanTest& test)
{
    networkDetails_.highlightGraph(bssid, test);
    signalHistory_.highlightGraph(bssid);
    channels24GHz_.highlightGraph(bssid);
    channels5GHz_.highlightGraph(bssid);
    signalRank_.highlightGraph(bssid, test);

    const auto it = test.scanedResults.constFind(bssid);
    if (it == test.scanedResults.cend() || it->isEmpty())
        return;
    const bool band24 = isBand24GHz(it->first());
    if (band24 && selectedTab_ == GraphTab::Channels5GHz)
        selectTab(GraphTab::Channels24GHz);
    else if (!band24 && selectedTab_ == GraphTab::Channels24GHz)
        selectTab(GraphTab::Channels5GHz);
}

void GraphViewTabSet::updateSSIDDetailsTab(const QString& bssid, const scanning::WiFiScanTest& test)
{
    networkDetails_.highlightGraph(bssid, test);
}

void GraphViewTabSet::reloadGraph(const scanning::WiFiScanTest& test)
{
    signalHistory_.reloadGraph(test);
    channels24GHz_.reloadGraph();
    channels5GHz_.reloadGraph();
    signalRank_.reloadGraph(&test);
}

void GraphViewTabSet::didRemoveAllPlots()
{
    signalHistory_.didRemoveAllPlots();
    channels24GHz_.didRemoveAllPlots();
    channels5GHz_.didRemoveAllPlots();
}

void GraphViewTabSet::clearGraph()
{
    signalHistory_.clearGraph();
    channels24GHz_.clearGraph();
    channels5GHz_.clearGraph();
    signalRank_.clearGraph();
}

void GraphViewTabSet::resetGraph()
{
    clearGraph();
    networkDetails_.resetGraph();
}

void GraphViewTabSet::scanDidStartedByUser(const scanning::WiFiScanTest& test)
{
    networkDetails_.scanDidStartedByUser();
    signalRank_.scanDidStartedByUser(test);
}

void GraphViewTabSet::scanDidStoppedByUser() { networkDetails_.scanDidStoppedByUser(); }

void GraphViewTabSet::refreshSettings()
{
    networkDetails_.refreshSettings();
    signalHistory_.refreshSettings();
    channels24GHz_.refreshSettings();
    channels5GHz_.refreshSettings();
}

} // namespace graphs
