#pragma once

#include <QTabWidget>

namespace graphs {
class GraphViewTabSet;
}

// The graph tabs beside the results table: network details, signal history, the two channel
// graphs and the signal rank, in the tab set's order; the tab set brings a band forward.
namespace graphs::view {

class ChannelGraphView;
class NetworkDetailsTab;
class SignalHistoryTab;
class SignalRankTab;

class GraphTabWidget : public QTabWidget {
    Q_OBJECT
public:
    explicit GraphTabWidget(GraphViewTabSet& tabs, QWidget* parent = nullptr);

    NetworkDetailsTab* networkDetails() const { return details_; }
    SignalHistoryTab* signalHistory() const { return history_; }
    ChannelGraphView* channels24GHz() const { return channels24GHz_; }
    ChannelGraphView* channels5GHz() const { return channels5GHz_; }
    SignalRankTab* signalRank() const { return rank_; }

signals:
    void samplesWindowRequested();

private:
    GraphViewTabSet& tabs_;
    NetworkDetailsTab* details_;
    SignalHistoryTab* history_;
    ChannelGraphView* channels24GHz_;
    ChannelGraphView* channels5GHz_;
    SignalRankTab* rank_;
};

} // namespace graphs::view
