#include "graph_test_records.h"

#include "core/memory_settings.h"
#include "graphs/network_details_model.h"
#include "graphs/signal_history_model.h"
#include "scanning/wifi_scan_test.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace graphs;
using graphs_test::sample;

namespace {

QList<scan::ScanedResultInfo> history(const QString& bssid, int count, int intervalSeconds)
{
    QList<scan::ScanedResultInfo> samples;
    for (int i = 0; i < count; ++i)
        samples.append(sample(bssid, -40 - i, i * intervalSeconds));
    return samples;
}

} // namespace

TEST(SignalHistoryModel, TimeWindowCoversTwelveIntervals)
{
    struct Case { int interval; double location; double tick; };
    const Case cases[] = {{10, 120, 5}, {20, 240, 5}, {21, 252, 10}, {30, 360, 10}};
    for (const Case& c : cases) {
        core::MemorySettings settings;
        SignalHistoryModel model(graphs_test::builtInColours(), settings);
        EXPECT_EQ(model.layout().xRange, (ValueRange{59, -59}));
        scanning::WiFiScanTest test;
        test.refreshInterval = c.interval;
        model.reloadGraph(test);
        EXPECT_EQ(model.layout().xRange, (ValueRange{c.location, -c.location})) << c.interval;
        EXPECT_EQ(model.layout().xAxis.majorInterval, c.tick) << c.interval;
    }
}

TEST(SignalHistoryModel, PointsLieSecondsBeforeTheNewestSample)
{
    core::MemorySettings settings;
    SignalHistoryModel model(graphs_test::builtInColours(), settings);
    model.addPlotToGraph(QStringLiteral("AA"), history(QStringLiteral("AA"), 3, 10));
    const HistoryLine line = *model.line(QStringLiteral("AA"));
    EXPECT_EQ(line.points, (QList<QPointF>{{0, -40}, {10, -41}, {20, -42}}));
    EXPECT_EQ(line.lineWidth, 3.0);
    EXPECT_EQ(line.lineColour.alpha, 0.75);

    // A removed line keeps its samples: adding it back shows them without a new scan.
    model.removePlotFromGraph(QStringLiteral("AA"));
    EXPECT_FALSE(model.line(QStringLiteral("AA")));
    model.updateGraphDataPoints({}, QStringLiteral("AA"));
    EXPECT_TRUE(model.line(QStringLiteral("AA"))->points.isEmpty());
}

TEST(SignalHistoryModel, ValueLabelsLeanInwardAtBothEnds)
{
    core::MemorySettings settings({{QStringLiteral("showRSSIValueOnGraph"), 1}});
    SignalHistoryModel model(graphs_test::builtInColours(), settings);
    model.addPlotToGraph(QStringLiteral("AA"), history(QStringLiteral("AA"), 13, 10));
    struct Case { int index; TextAlignment alignment; double width; double shift; };
    const Case cases[] = {{0, TextAlignment::Left, 50, -20}, {1, TextAlignment::Right, 30, 0},
                          {11, TextAlignment::Right, 30, 0}, {12, TextAlignment::Centre, 50, 0}};
    for (const Case& c : cases) {
        const ValueLabel label = *model.dataLabel(QStringLiteral("AA"), c.index);
        EXPECT_EQ(label.alignment, c.alignment) << c.index;
        EXPECT_EQ(label.width, c.width) << c.index;
        EXPECT_EQ(label.xShift, c.shift) << c.index;
        EXPECT_EQ(label.height, 20.0);
        EXPECT_EQ(label.text, QString::number(-40 - c.index));
    }
    EXPECT_FALSE(model.dataLabel(QStringLiteral("AA"), 13));
}

TEST(SignalHistoryModel, ValueSwitchAddsAndRemovesLabelsAndSymbols)
{
    core::MemorySettings settings({{QStringLiteral("showRSSIValueOnGraph"), 0}});
    SignalHistoryModel model(graphs_test::builtInColours(), settings);
    model.addPlotToGraph(QStringLiteral("AA"), history(QStringLiteral("AA"), 2, 10));
    QSignalSpy changed(&model, &SignalHistoryModel::changed);
    EXPECT_FALSE(model.line(QStringLiteral("AA"))->symbol);
    EXPECT_FALSE(model.dataLabel(QStringLiteral("AA"), 0));

    settings.setValue(QStringLiteral("showRSSIValueOnGraph"), QStringLiteral("true"));
    model.refreshSettings();
    EXPECT_EQ(changed.count(), 1);
    ASSERT_TRUE(model.line(QStringLiteral("AA"))->symbol);
    EXPECT_EQ(model.line(QStringLiteral("AA"))->symbol->fill.alpha, 0.75);
    EXPECT_TRUE(model.dataLabel(QStringLiteral("AA"), 0));
}

TEST(SignalHistoryModel, HighlightedLineCarriesTheAnnotation)
{
    core::MemorySettings settings;
    SignalHistoryModel model(graphs_test::builtInColours(), settings);
    model.addPlotToGraph(QStringLiteral("AA"), history(QStringLiteral("AA"), 3, 10));
    model.addPlotToGraph(QStringLiteral("BB"), history(QStringLiteral("BB"), 3, 10));
    QSignalSpy moved(&model, &SignalHistoryModel::annotationMoved);
    scanning::WiFiScanTest test;
    model.reloadGraph(test);
    EXPECT_EQ(moved.count(), 0);

    model.highlightGraph(QStringLiteral("AA"));
    EXPECT_EQ(model.line(QStringLiteral("BB"))->lineColour.alpha, 0.2);
    EXPECT_EQ(model.annotationText(1), QStringLiteral(" RSSI: -41 dBm \n Time: 02:29:50"));
    EXPECT_EQ(model.annotationText(7), QStringLiteral(" RSSI: No Data \n Time: "));
    const SelectionLine line = *model.selectionLine(2);
    EXPECT_EQ(line.from, QPointF(20, -100));
    EXPECT_EQ(line.to, QPointF(20, 0));

    model.reloadGraph(test);
    ASSERT_EQ(moved.count(), 1);
    EXPECT_EQ(moved.at(0).at(0).toInt(), 13);
}

TEST(SignalAnnotation, WritesEachChosenValueOnItsOwnLine)
{
    scan::ScanedResultInfo record = sample(QStringLiteral("AA"), -61, 0);
    record.noise = -92;
    record.singnalToNoise = 31;
    const SignalAnnotation all{true, true, true};
    EXPECT_EQ(all.text(&record), QStringLiteral(" RSSI: -61 dBm \nNoise: -92 dBm \n  SNR: 31 dB \n Time: 02:30:00"));
    EXPECT_EQ(all.text(nullptr), QStringLiteral(" RSSI: No Data \nNoise: No Data \n  SNR: No Data \n Time: "));
}

TEST(NetworkDetailsModel, KeepsTheLast25SamplesOfTheExaminedNetworkOnly)
{
    core::MemorySettings settings;
    NetworkDetailsModel model(settings);
    scanning::WiFiScanTest test;
    model.highlightGraph(QStringLiteral("AA"), test);
    model.updateGraphDataPoints({sample(QStringLiteral("BB"), -50, 0)}, QStringLiteral("BB"));
    EXPECT_TRUE(model.sampledData().isEmpty());

    for (int i = 0; i < 26; ++i)
        model.updateGraphDataPoints({sample(QStringLiteral("AA"), -50 - i, 200 - 5 * i)}, QStringLiteral("AA"));
    ASSERT_EQ(model.sampledData().size(), 25);
    EXPECT_EQ(model.sampledData().first().rssi, -75);
    EXPECT_EQ(model.sampledData().last().rssi, -51);
    EXPECT_EQ(model.lines().at(0).points.at(24), QPointF(120, -51));
}

TEST(NetworkDetailsModel, ChannelTextShowsTheSecondaryChannelSide)
{
    struct Case { long long offset; const char* text; };
    const Case cases[] = {{1, "36,+1 (5 GHz) "}, {-1, "36,-1 (5 GHz) "}, {0, "36 (5 GHz) "}};
    for (const Case& c : cases) {
        core::MemorySettings settings;
        NetworkDetailsModel model(settings);
        scanning::WiFiScanTest test;
        scan::ScanedResultInfo record = graphs_test::network(QStringLiteral("AA"), 36, -50, 40, c.offset);
        record.supportedDataRates = QStringList{QStringLiteral("6"), QStringLiteral("54")};
        test.scanedResults.insert(QStringLiteral("AA"), {record});
        model.highlightGraph(QStringLiteral("AA"), test);
        EXPECT_EQ(model.texts().channel, QLatin1String(c.text));
        EXPECT_EQ(model.texts().dataRates, QStringLiteral("6, 54 Mbps"));
    }
}
