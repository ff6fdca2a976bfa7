#include "graphs/view/graph_tab_widget.h"

#include "graphs/graph_view_tab_set.h"
#include "graphs/view/channel_graph_view.h"
#include "graphs/view/network_details_tab.h"
#include "graphs/view/signal_history_tab.h"
#include "graphs/view/signal_rank_tab.h"

namespace graphs::view {

GraphTabWidget::GraphTabWidget(GraphViewTabSet& tabs, QWidget* parent)
    : QTabWidget(parent),
      tabs_(tabs),
      details_(new NetworkDetailsTab(tabs.networkDetails(), this)),
      history_(new SignalHistoryTab(tabs.signalHistory(), this)),
      channels24GHz_(new ChannelGraphView(tabs.channels24GHz(), this)),
      channels5GHz_(new ChannelGraphView(tabs.channels5GHz(), this)),
      rank_(new SignalRankTab(tabs.signalRank(), this))
{
    setObjectName(QStringLiteral("graphTabs"));
    setAccessibleName(tr("Graphs"));
    // Indices follow graphs::GraphTab.
    addTab(details_, tr("Network Details"));
    addTab(history_, tr("Signal History"));
    addTab(channels24GHz_, tr("2.4 GHz"));
    addTab(channels5GHz_, tr("5 GHz"));
    addTab(rank_, tr("Signal Rank"));
    setCurrentIndex(static_cast<int>(tabs_.selectedTab()));
    connect(&tabs_, &GraphViewTabSet::tabSelected, this,
            [this](graphs::GraphTab tab) { setCurrentIndex(static_cast<int>(tab)); });
    connect(this, &QTabWidget::currentChanged, this, [this](int index) {
        if (index >= 0 && index != static_cast<int>(tabs_.selectedTab()))
            tabs_.selectTab(static_cast<graphs::GraphTab>(index));
    });
    connect(details_, &NetworkDetailsTab::samplesWindowRequested, this, &GraphTabWidget::samplesWindowRequested);
}

} // namespace graphs::view
