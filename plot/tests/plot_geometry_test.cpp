#include "plot/axis.h"
#include "plot/geometry.h"
#include "plot/graph.h"

#include <gtest/gtest.h>

namespace {

TEST(PlotGeometry, MapsRangesBothWaysIncludingReversedOnes)
{
    plot::Graph graph;
    graph.graphPadding = 3.0;
    graph.plotAreaPadding = {15.0, 15.0, 45.0, 55.0};
    graph.x = {59.0, -59.0};  // newest at the right
    graph.y = {-100.0, 100.0};
    const plot::Geometry geometry(graph, QSizeF(3.0 + 55.0 + 118.0 + 15.0 + 3.0, 3.0 + 15.0 + 100.0 + 45.0 + 3.0));
    EXPECT_EQ(geometry.plotArea(), QRectF(58.0, 18.0, 118.0, 100.0));
    EXPECT_DOUBLE_EQ(geometry.xToPixel(59.0), 58.0);
    EXPECT_DOUBLE_EQ(geometry.xToPixel(0.0), 176.0);
    EXPECT_DOUBLE_EQ(geometry.yToPixel(-100.0), 118.0);
    EXPECT_DOUBLE_EQ(geometry.yToPixel(0.0), 18.0);
    const QPointF data(29.5, -50.0);
    const QPointF back = geometry.toData(geometry.toPixel(data));
    EXPECT_NEAR(back.x(), data.x(), 1e-9);
    EXPECT_NEAR(back.y(), data.y(), 1e-9);

    // A window smaller than its paddings gives an empty plot area, not a negative one.
    const plot::Geometry tiny(graph, QSizeF(20.0, 20.0));
    EXPECT_GE(tiny.plotArea().width(), 0.0);
    EXPECT_GE(tiny.plotArea().height(), 0.0);
    EXPECT_TRUE(std::isfinite(tiny.toData(QPointF(5.0, 5.0)).x()));
}

TEST(PlotAxis, PlacesTicksAndWritesLabels)
{
    plot::Axis axis;
    axis.labelling = plot::Labelling::FixedInterval;
    axis.majorInterval = 5.0;
    axis.minorTicksPerInterval = 1;
    // A reversed range ticks the same values as the forward one.
    const plot::Range window{120.0, -120.0};
    const QList<double> majors = plot::majorTicks(axis, window);
    ASSERT_EQ(majors.size(), 25);
    EXPECT_EQ(majors.first(), 0.0);
    EXPECT_EQ(majors.last(), 120.0);
    EXPECT_EQ(plot::minorTicks(axis, window).size(), 24);
    EXPECT_EQ(plot::minorTicks(axis, window).first(), 2.5);

    // Numbers carry no fractional digits, and a minus zero reads as 0.
    axis.majorInterval = 0.5;
    const QList<plot::TickLabel> halves = plot::tickLabels(axis, {-0.4, 1.0});
    ASSERT_EQ(halves.size(), 2);
    EXPECT_EQ(halves[0].text, QStringLiteral("0"));
    EXPECT_EQ(halves[1].text, QStringLiteral("1"));  // 0.5 rounds away from zero

    axis.labelling = plot::Labelling::Automatic;
    EXPECT_EQ(plot::automaticInterval({-100.0, 100.0}), 20.0);
    EXPECT_EQ(plot::automaticInterval({0.0, 59.0}), 20.0);
    EXPECT_EQ(plot::automaticInterval({0.0, 7.0}), 2.0);
    QStringList texts;
    for (const plot::TickLabel& label : plot::tickLabels(axis, {-100.0, 100.0}))
        texts << label.text;
    EXPECT_EQ(texts, QStringList({"-100", "-80", "-60", "-40", "-20", "0"}));

    // A zero or absurd interval draws no ticks rather than looping.
    axis.labelling = plot::Labelling::FixedInterval;
    axis.majorInterval = 0.0;
    EXPECT_TRUE(plot::majorTicks(axis, window).isEmpty());
    axis.majorInterval = 1e-9;
    EXPECT_LE(plot::majorTicks(axis, window).size(), 1000);
}

TEST(PlotAxis, CustomAndTimeOfDayLabels)
{
    plot::Axis channels;
    channels.labelling = plot::Labelling::Custom;
    channels.customLabels = {{2412.0, "1"}, {2437.0, "6"}, {2484.0, "14"}, {5180.0, "36"}};
    const QList<plot::TickLabel> shown = plot::tickLabels(channels, {2400.0, 100.0});
    ASSERT_EQ(shown.size(), 3);
    EXPECT_EQ(shown[1], (plot::TickLabel{2437.0, "6"}));
    EXPECT_TRUE(plot::minorTicks(channels, {2400.0, 100.0}).isEmpty());

    plot::Axis time;
    time.labelling = plot::Labelling::FixedInterval;
    time.majorInterval = 30.0;
    time.format = plot::LabelFormat::TimeOfDay;
    time.timeOrigin = QDateTime(QDate(2026, 3, 1), QTime(13, 59, 30));
    const QList<plot::TickLabel> clock = plot::tickLabels(time, {0.0, 60.0});
    ASSERT_EQ(clock.size(), 3);
    EXPECT_EQ(clock[0].text, QStringLiteral("13:59:30"));
    EXPECT_EQ(clock[2].text, QStringLiteral("14:00:30"));
}

TEST(PlotGraph, KeepsDrawingOrderAndBringsPlotsToTop)
{
    plot::Graph graph;
    for (const char* id : {"a", "b", "c"})
        graph.setPlot(plot::ScatterPlot{QString::fromLatin1(id), {}, {}, 1.0, {}, 0.0, {}, {}});
    graph.setPlot(plot::BarPlot{QStringLiteral("b"), {}, 0.0, 0.8, 0.0, {}});  // replaced in place
    EXPECT_TRUE(std::holds_alternative<plot::BarPlot>(graph.plots[1]));
    EXPECT_TRUE(graph.bringToTop(QStringLiteral("a")));
    EXPECT_FALSE(graph.bringToTop(QStringLiteral("zz")));
    QStringList order;
    for (const plot::Plot& p : graph.plots)
        order << plot::identifierOf(p);
    EXPECT_EQ(order, QStringList({"b", "c", "a"}));
    graph.removePlot(QStringLiteral("c"));
    EXPECT_EQ(graph.plots.size(), 2);
    EXPECT_EQ(graph.plot(QStringLiteral("c")), nullptr);
}

} // namespace
