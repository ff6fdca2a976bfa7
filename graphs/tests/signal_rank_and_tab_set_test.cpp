#include "graph_test_records.h"

#include "core/memory_settings.h"
#include "graphs/graph_view_tab_set.h"
#include "graphs/signal_rank_model.h"
#include "scanning/wifi_scan_test.h"

#include <gtest/gtest.h>

using namespace graphs;
using graphs_test::network;

namespace {

scan::ScanedResultInfo named(const char* bssid, const char* ssid, int rssi)
{
    scan::ScanedResultInfo r = network(QString::fromLatin1(bssid), 6, rssi);
    r.ssid = QString::fromLatin1(ssid);
    return r;
}

} // namespace

TEST(SignalRankModel, RanksStrongestFirstAndLeavesTenEmptySlots)
{
    SignalRankModel model;
    const int levels[] = {-40, -70, -55, -90, -55};
    for (int i = 0; i < 5; ++i)
        model.addPlotToGraph(QStringLiteral("B%1").arg(i), network(QStringLiteral("B%1").arg(i), 6, levels[i]));
    QList<double> tips;
    for (const RankBar& bar : model.bars())
        tips.append(bar.tip);
    EXPECT_EQ(tips, (QList<double>{-40, -55, -55, -70, -90}));
    EXPECT_EQ(model.bars().at(1).bssid, QStringLiteral("B2"));
    EXPECT_EQ(model.layout().xRange, (ValueRange{0, 15}));
}

TEST(SignalRankModel, BarFillsFollowTheFirstMatchingRule)
{
    SignalRankModel model;
    scanning::WiFiScanTest test;
    test.activeBSSID = QStringLiteral("C1");
    model.scanDidStartedByUser(test);
    const scan::ScanedResultInfo records[] = {named("C1", "home", -40), named("C2", "home", -45), named("S1", "work", -50),
                                        named("S2", "work", -55), named("H1", "cafe", -60), named("H2", "cafe", -65),
                                        named("X1", "other", -70)};
    for (const scan::ScanedResultInfo& r : records)
        model.addPlotToGraph(r.bssid, r);
    model.highlightGraph(QStringLiteral("S1"), test);
    model.hoverBar(4);

    const std::array<double, 4> expected[] = {{1, 1, 0, 1},   {1, 1, 0, 0.5}, {0, 113 / 255.0, 187 / 255.0, 1},
                                              {0, 113 / 255.0, 187 / 255.0, 0.5}, {0.5, 0.5, 0.5, 1},
                                              {128 / 255.0, 128 / 255.0, 128 / 255.0, 0.8},
                                              {69 / 255.0, 69 / 255.0, 69 / 255.0, 1}};
    for (int i = 0; i < 7; ++i) {
        const graphs::ColourCode fill = *model.barFill(i);
        EXPECT_EQ((std::array<double, 4>{fill.red, fill.green, fill.blue, fill.alpha}), expected[i]) << i;
    }
    EXPECT_EQ(model.labels().selected, QStringLiteral("work    -50 "));
    EXPECT_EQ(model.labels().hovered, QStringLiteral("cafe    -60 "));
    EXPECT_EQ(model.labels().active, QStringLiteral("home    -40 "));

    // The connected network stays yellow when it is also selected.
    model.highlightGraph(QStringLiteral("C1"), test);
    EXPECT_EQ(model.barFill(0)->blue, 0.0);

    for (const scan::ScanedResultInfo& r : records)
        model.removePlotFromGraph(r.bssid);
    model.reloadGraph(nullptr);
    EXPECT_EQ(model.labels().selected, QString());
    EXPECT_EQ(model.labels().hovered, QString());
    EXPECT_EQ(model.labels().active, QString());
}

TEST(SignalRankModel, LabelKeepsTheBroadcastNameAndItsSignalApart)
{
    SignalRankModel model;
    scanning::WiFiScanTest test;
    scan::ScanedResultInfo percent = named("P1", "50%1 off", -50);
    scan::ScanedResultInfo turned = named("T1", "", -60);
    turned.ssid = QStringLiteral("abc\u202Edef");
    model.addPlotToGraph(percent.bssid, percent);
    model.addPlotToGraph(turned.bssid, turned);
    model.highlightGraph(QStringLiteral("P1"), test);
    EXPECT_EQ(model.labels().selected, QStringLiteral("50%1 off    -50 "));
    model.highlightGraph(QStringLiteral("T1"), test);
    EXPECT_EQ(model.labels().selected, QStringLiteral("\u2068abc\u202Edef\u2069    -60 "));
}

TEST(GraphViewTabSet, RoutesEachNetworkToItsBandAndBringsThatTabForward)
{
    core::MemorySettings settings;
    GraphViewTabSet tabs(graphs_test::builtInColours(), settings);
    tabs.selectTab(GraphTab::Channels5GHz);

    scan::ScanedResultInfo unknownBand = network(QStringLiteral("UU"), 6, -50);
    unknownBand.channelBond = 0.0;
    tabs.addPlotToGraph(QStringLiteral("AA"), {network(QStringLiteral("AA"), 6, -50)});
    EXPECT_EQ(tabs.selectedTab(), GraphTab::Channels24GHz);
    tabs.addPlotToGraph(QStringLiteral("UU"), {unknownBand});
    EXPECT_EQ(tabs.selectedTab(), GraphTab::Channels5GHz);

    EXPECT_EQ(tabs.channels24GHz().plotIdentifiers(), QStringList{QStringLiteral("AA")});
    EXPECT_EQ(tabs.channels5GHz().plotIdentifiers(), QStringList{QStringLiteral("UU")});
    EXPECT_EQ(tabs.signalHistory().plotIdentifiers().size(), 2);
    EXPECT_EQ(tabs.signalRank().bars().size(), 2);

    // Updates switch no tab; highlighting does.
    tabs.updateGraphDataPoints({network(QStringLiteral("AA"), 6, -30)}, QStringLiteral("AA"));
    EXPECT_EQ(tabs.selectedTab(), GraphTab::Channels5GHz);
    EXPECT_EQ(tabs.signalRank().bars().first().tip, -30.0);

    scanning::WiFiScanTest test;
    test.scanedResults.insert(QStringLiteral("AA"), {network(QStringLiteral("AA"), 6, -30)});
    tabs.highlightGraph(QStringLiteral("AA"), test);
    EXPECT_EQ(tabs.selectedTab(), GraphTab::Channels24GHz);
    EXPECT_EQ(tabs.channels24GHz().highlightedGraphID(), QStringLiteral("AA"));
    EXPECT_EQ(tabs.networkDetails().visibleBSSID(), QStringLiteral("AA"));

    tabs.removePlotFromGraph(QStringLiteral("AA"));
    EXPECT_TRUE(tabs.channels24GHz().plotIdentifiers().isEmpty());
    EXPECT_EQ(tabs.signalRank().bars().size(), 1);
}
