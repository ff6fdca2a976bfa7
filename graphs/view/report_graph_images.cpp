#include "graphs/view/report_graph_images.h"

#include "graphs/graph_view_tab_set.h"
#include "graphs/view/graph_scenes.h"

namespace graphs::view {

ReportGraphImages::ReportGraphImages(GraphViewTabSet& tabs, GraphTheme theme, QObject* parent)
    : QObject(parent),
      tabs_(tabs),
      theme_(theme),
      channels24GHz_(QLatin1String(scanning::ReportGraphs::channels24GHzFileName)),
      channels5GHz_(QLatin1String(scanning::ReportGraphs::channels5GHzFileName)),
      signalRank_(QLatin1String(scanning::ReportGraphs::signalRankFileName))
{
    // A scan changes the models many times; the pictures are rebuilt once after it.
    refreshSoon_.setSingleShot(true);
    refreshSoon_.setInterval(0);
    connect(&refreshSoon_, &QTimer::timeout, this, &ReportGraphImages::refresh);
    const auto later = [this] { refreshSoon_.start(); };
    connect(&tabs_.channels24GHz(), &ChannelGraphModel::changed, this, later);
    connect(&tabs_.channels5GHz(), &ChannelGraphModel::changed, this, later);
    connect(&tabs_.signalRank(), &SignalRankModel::changed, this, later);
    refresh();
}

void ReportGraphImages::refresh()
{
    refreshSoon_.stop();
    channels24GHz_.publish(channelScene(tabs_.channels24GHz(), theme_));
    channels5GHz_.publish(channelScene(tabs_.channels5GHz(), theme_));
    signalRank_.publish(rankScene(tabs_.signalRank(), theme_));
}

scanning::ReportGraphs ReportGraphImages::reportGraphs()
{
    return scanning::ReportGraphs{&channels24GHz_, &channels5GHz_, &signalRank_};
}

} // namespace graphs::view
