#include "graph_test_records.h"

#include "core/memory_settings.h"
#include "graphs/channel_graph_model.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace graphs;
using graphs_test::network;

namespace {

struct ShapeCase {
    int channel;
    int width;
    long long offset;
    std::array<double, 4> x;
};

void expectShape(const ChannelBand& band, const ShapeCase& c)
{
    core::MemorySettings settings;
    ChannelGraphModel model(band, graphs_test::builtInColours(), settings);
    model.addPlotToGraph(QStringLiteral("AA"), network(QStringLiteral("AA"), c.channel, -55, c.width, c.offset));
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(model.point(QStringLiteral("AA"), i).x(), c.x[static_cast<std::size_t>(i)])
            << "channel " << c.channel << " width " << c.width << " offset " << c.offset << " point " << i;
    EXPECT_EQ(model.point(QStringLiteral("AA"), 0).y(), -100.0);
    EXPECT_EQ(model.point(QStringLiteral("AA"), 1).y(), -55.0);
    EXPECT_EQ(model.point(QStringLiteral("AA"), 2).y(), -55.0);
    EXPECT_EQ(model.point(QStringLiteral("AA"), 3).y(), -100.0);
    EXPECT_EQ(model.point(QStringLiteral("AA"), 5), model.point(QStringLiteral("AA"), 1));
}

} // namespace

TEST(ChannelGraphModel, Shapes24GHzKeepTheirUnevenCorners)
{
    const ShapeCase cases[] = {
        {1, 20, 0, {2401, 2403, 2421, 2423}},
        {6, 20, 0, {2426, 2428, 2446, 2448}},
        {6, 20, 1, {2426, 2428, 2446, 2448}},
        {6, 20, -1, {2426, 2426, 2446, 2448}},  // vertical left side
        {6, 40, 1, {2426, 2428, 2466, 2468}},
        {11, 40, -1, {2431, 2433, 2471, 2473}},
        {3, 80, 0, {2411, 2413, 2471, 2477}},   // right foot 44 out, top corner only 40
        {9, 80, -1, {2397, 2401, 2461, 2463}},
        {6, 160, -1, {2426, 2426, 2446, 2448}}, // an unlisted width takes the 20 MHz corners
        {14, 20, 0, {2536, 2538, 2556, 2558}},  // channel 14 is offset from its own number
    };
    for (const ShapeCase& c : cases)
        expectShape(ChannelBand::band24GHz(), c);
}

TEST(ChannelGraphModel, Shapes5GHzKeepTheirUnevenCorners)
{
    const ShapeCase cases[] = {
        {36, 20, 0, {5170, 5172, 5188, 5190}},
        {36, 40, 1, {5170, 5175, 5206, 5210}},
        {36, 80, 1, {5170, 5175, 5245, 5250}},
        {36, 160, 1, {5170, 5178, 5324, 5330}},
        {36, 10, 1, {5170, 5175, 5188, 5190}},
        {149, 20, -1, {5735, 5737, 5752, 5755}},
        {44, 40, -1, {5190, 5194, 5227, 5230}},
        {52, 80, -1, {5200, 5205, 5315, 5320}},
        {100, 160, -1, {5360, 5363, 5637, 5640}},
        {100, 10, -1, {5500, 5500, 5500, 5500}}, // an unlisted width collapses to the centre
    };
    for (const ShapeCase& c : cases)
        expectShape(ChannelBand::band5GHz(), c);
}

TEST(ChannelGraphModel, ChannelAxesNameTheBandsChannelsAtTheirCentres)
{
    const ChannelBand& low = ChannelBand::band24GHz();
    ASSERT_EQ(low.channelLabels.size(), 14);
    EXPECT_EQ(low.channelLabels.first().text, QStringLiteral("1"));
    EXPECT_EQ(low.channelLabels.first().position, 2412.0);
    EXPECT_EQ(low.channelLabels.at(12).position, 2472.0);
    EXPECT_EQ(low.channelLabels.last().position, 2484.0);

    const ChannelBand& high = ChannelBand::band5GHz();
    ASSERT_EQ(high.channelLabels.size(), 28);
    EXPECT_EQ(high.channelLabels.at(23).text, QStringLiteral("149"));
    EXPECT_EQ(high.channelLabels.at(23).position, 5745.0);
}

TEST(ChannelGraphModel, HighlightBringsOneCurveForwardAndFadesTheRest)
{
    core::MemorySettings settings;
    ChannelGraphModel model(ChannelBand::band24GHz(), graphs_test::builtInColours(), settings);
    const QString a = QStringLiteral("00:00:00:00:00:0A");
    const QString b = QStringLiteral("00:00:00:00:00:0B");
    const QString c = QStringLiteral("00:00:00:00:00:0C");
    for (const QString& id : {a, b, c})
        model.addPlotToGraph(id, network(id, 6, -60));

    EXPECT_EQ(model.curve(a)->lineWidth, 4.0);
    EXPECT_EQ(model.curve(a)->lineColour.alpha, 0.75);
    EXPECT_EQ(model.dataLabel(a, 2)->colour.alpha, 0.75);
    EXPECT_FALSE(model.dataLabel(a, 1));

    model.highlightGraph(a);
    EXPECT_EQ(model.plotIdentifiers(), (QStringList{b, c, a}));
    const ChannelCurve lifted = *model.curve(a);
    EXPECT_EQ(lifted.lineWidth, 4.0);
    EXPECT_EQ(lifted.lineColour.alpha, 1.0);
    ASSERT_TRUE(lifted.areaFill);
    EXPECT_EQ(lifted.areaFill->from.alpha, 0.4);
    EXPECT_EQ(lifted.areaFill->to.alpha, 0.2);
    EXPECT_EQ(lifted.label->colour.alpha, 1.0);
    EXPECT_EQ(model.curve(b)->lineWidth, 3.0);
    EXPECT_EQ(model.curve(b)->lineColour.alpha, 0.2);
    EXPECT_EQ(model.dataLabel(b, 2)->colour.alpha, 0.2);

    model.highlightGraph(b);
    EXPECT_FALSE(model.curve(a)->areaFill);
    EXPECT_EQ(model.curve(a)->lineColour.alpha, 0.2);

    model.highlightGraph(b);
    EXPECT_TRUE(model.highlightedGraphID().isEmpty());
    for (const QString& id : {a, b, c}) {
        EXPECT_EQ(model.curve(id)->lineWidth, 3.0);
        EXPECT_EQ(model.curve(id)->lineColour.alpha, 0.75);
        EXPECT_FALSE(model.curve(id)->areaFill);
    }
}

TEST(ChannelGraphModel, HighlightFillAlphaUsesIntegerArithmetic)
{
    const std::pair<int, double> cases[] = {{-30, 0.4}, {-95, 0.4}, {0, 0.8}, {-100, 0.4}, {-150, 0.4}, {20, 0.4}};
    for (const auto& [rssi, alpha] : cases)
        EXPECT_EQ(PlotStack::highlightFillAlpha(rssi), alpha) << rssi;
}

TEST(ChannelGraphModel, ClearedCurvesDrawNothingUntilRemoved)
{
    core::MemorySettings settings;
    ChannelGraphModel model(ChannelBand::band5GHz(), graphs_test::builtInColours(), settings);
    model.addPlotToGraph(QStringLiteral("AA"), network(QStringLiteral("AA"), 36, -50));
    model.clearGraph();
    EXPECT_EQ(model.plotIdentifiers(), QStringList{QStringLiteral("AA")});
    EXPECT_EQ(model.numberOfRecords(QStringLiteral("AA")), 0);
    EXPECT_TRUE(model.curve(QStringLiteral("AA"))->points.isEmpty());

    // Highlighting a curve without data takes it off the graph.
    model.highlightGraph(QStringLiteral("AA"));
    EXPECT_TRUE(model.plotIdentifiers().isEmpty());
}

TEST(ChannelGraphModel, GridLinesFollowTheSettingAndAnnounceTheChange)
{
    core::MemorySettings settings({{QStringLiteral("showGridLinesOnGraph"), 1}});
    ChannelGraphModel model(ChannelBand::band24GHz(), graphs_test::builtInColours(), settings);
    QSignalSpy changed(&model, &ChannelGraphModel::changed);
    EXPECT_TRUE(model.layout().gridLines);

    model.refreshSettings();
    EXPECT_EQ(changed.count(), 0);

    settings.setValue(QStringLiteral("showGridLinesOnGraph"), 0);
    model.refreshSettings();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_FALSE(model.layout().gridLines);
}
