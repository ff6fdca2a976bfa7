#include "monitor/graph_plot_data_source.h"
#include "monitor/monitor_texts.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using monitor::GraphPlotDataSource;

TEST(GraphPlotDataSource, ListsKeepTheNewest13AndTheCounterStopsWhenFull)
{
    GraphPlotDataSource source;
    for (int i = 1; i <= 14; ++i) {
        source.addDataPoint(QString::number(-i));
        source.addNoiseDataPoint(-90 - i);
        EXPECT_EQ(source.curretIndex(), std::min(i, 13)) << i;
    }
    ASSERT_EQ(source.dataPoints().size(), 13);
    ASSERT_EQ(source.noiseDataPoints().size(), 13);
    EXPECT_EQ(source.dataAtIndex(0), -14.0);
    EXPECT_EQ(source.dataAtIndex(12), -2.0);
    EXPECT_EQ(source.scanedDataAtIndex(0), -104);
    EXPECT_EQ(source.scanedDataAtIndex(12), -92);
    EXPECT_EQ(source.dataAtIndex(13), std::nullopt);
    EXPECT_EQ(source.scanedDataAtIndex(-1), std::nullopt);

    // Emptying the signal list resets the shared counter; a full noise list keeps it at 0.
    source.removeAllDataPoint();
    EXPECT_EQ(source.curretIndex(), 0);
    source.addNoiseDataPoint(-80);
    EXPECT_EQ(source.curretIndex(), 0);
    source.removeAllScanedDataPoint();
    source.addNoiseDataPoint(-80);
    EXPECT_EQ(source.curretIndex(), 1);
}

TEST(GraphPlotDataSource, UnreadableSignalTextAddsNothing)
{
    GraphPlotDataSource source;
    for (const char* text : {"", "abc", "-4x5"})
        source.addDataPoint(QString::fromLatin1(text));
    source.addDataPoint(QStringLiteral("-45"));
    EXPECT_EQ(source.dataPoints(), QList<double>{-45.0});
}

TEST(GraphPlotDataSource, PointsRunFromNowBackTwelveIntervalsPerPlot)
{
    GraphPlotDataSource source;
    source.setRefreshInterval(5);
    for (int i = 0; i < 20; ++i) {
        source.addDataPoint(QString::number(-40 - i));
        source.addNoiseDataPoint(-95);
    }
    const QList<QPointF> signal = source.numbersForPlot(QString::fromLatin1(GraphPlotDataSource::signalPlotId), 0, 50);
    ASSERT_EQ(signal.size(), 13);
    EXPECT_EQ(signal.first(), QPointF(0, -59));
    EXPECT_EQ(signal.last(), QPointF(60, -47));

    const QString noisePlot = QString::fromLatin1(GraphPlotDataSource::noisePlotId);
    EXPECT_EQ(source.numbersForPlot(noisePlot, 11, 5), (QList<QPointF>{{55, -95}, {60, -95}}));
    EXPECT_TRUE(source.numbersForPlot(noisePlot, 20, 3).isEmpty());
    EXPECT_TRUE(source.numbersForPlot(noisePlot, -3, 2).isEmpty());
    EXPECT_EQ(source.numberOfRecordsForPlot(QStringLiteral("anything else")), 13);
}

TEST(MonitorTexts, FieldsAreFormattedAsTheWindowShowsThem)
{
    EXPECT_EQ(monitor::signalText(-45, -92), QStringLiteral("-45, -92 (47)"));
    EXPECT_EQ(monitor::signalText(-60, 0), QStringLiteral("-60, 0 (-60)"));
    EXPECT_EQ(monitor::signalText(INT_MAX, INT_MIN), QStringLiteral("2147483647, -2147483648 (4294967295)"));
    EXPECT_EQ(monitor::channelText(36, 80), QStringLiteral("36/80MHz"));
    EXPECT_EQ(monitor::channelText(6, 20), QStringLiteral("6/20MHz"));
    EXPECT_EQ(monitor::ibssText(true), QStringLiteral("YES"));
    EXPECT_EQ(monitor::ibssText(false), QStringLiteral("NO"));
}

} // namespace
