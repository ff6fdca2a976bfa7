#include "graphs/view/channel_graph_view.h"

#include "graphs/channel_graph_model.h"
#include "graphs/view/graph_scenes.h"

namespace graphs::view {

ChannelGraphView::ChannelGraphView(ChannelGraphModel& model, QWidget* parent)
    : GraphView(&model.band() == &ChannelBand::band24GHz() ? QStringLiteral("channelGraph24GHz")
                                                          : QStringLiteral("channelGraph5GHz"),
                tr("%1 channel graph").arg(bandName(model)),
                [&model](const GraphTheme& theme) { return channelScene(model, theme); },
                [&model] { return describe(model); }, parent)
{
    connect(&model, &ChannelGraphModel::changed, this, &GraphView::refreshSoon);
}

QString ChannelGraphView::bandName(const ChannelGraphModel& model)
{
    return &model.band() == &ChannelBand::band24GHz() ? QStringLiteral("2.4 GHz") : QStringLiteral("5 GHz");
}

QString ChannelGraphView::describe(const ChannelGraphModel& model)
{
    int drawn = 0;
    for (const QString& id : model.plotIdentifiers())
        drawn += model.numberOfRecords(id) > 0 ? 1 : 0;
    QString text = tr("%1 channel graph, %n networks", nullptr, drawn).arg(bandName(model));
    const std::optional<ChannelCurve> highlighted = model.curve(model.highlightedGraphID());
    if (highlighted && highlighted->label)
        text += tr(", highlighted: %1").arg(highlighted->label->text);
    return text;
}

} // namespace graphs::view
