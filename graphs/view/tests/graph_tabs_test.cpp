#include "graphs/tests/graph_test_records.h"

#include "core/memory_settings.h"
#include "graphs/graph_view_tab_set.h"
#include "graphs/view/channel_graph_view.h"
#include "graphs/view/graph_tab_widget.h"
#include "graphs/view/network_details_tab.h"
#include "graphs/view/scene_style.h"
#include "graphs/view/signal_history_tab.h"
#include "graphs/view/signal_rank_tab.h"
#include "scanning/wifi_scan_test.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using graphs_test::network;

class GraphTabs : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        static int argc = 1;
        static char name[] = "graph_view_tests";
        static char* argv[] = {name, nullptr};
        if (QCoreApplication::instance() == nullptr)
            new QApplication(argc, argv);
    }

    void SetUp() override
    {
        widget.resize(900, 500);
        widget.show();
    }

    // Lets the coalesced refresh run and waits for the render it starts.
    static void settle(plot::widget::PlotView* view)
    {
        QCoreApplication::processEvents();
        ASSERT_TRUE(QTest::qWaitFor([view] { return !view->renderPending(); }, 5000));
        QCoreApplication::processEvents();
    }

    static QColor pixelAt(plot::widget::PlotView* view, const QPointF& data)
    {
        const QImage image = view->cachedImage();
        const QPointF pixel = view->plotGeometry().toPixel(data) * image.devicePixelRatio();
        return image.pixelColor(pixel.toPoint());
    }

    core::MemorySettings settings{QVariantMap{{"showGridLinesOnGraph", 0}, {"showRSSIValueOnGraph", 0}}};
    graphs::GraphViewTabSet tabs{graphs_test::builtInColours(), settings};
    graphs::view::GraphTabWidget widget{tabs};
};

TEST_F(GraphTabs, ChannelGraphsDescribeThemselvesFollowTheBandAndPaintTheHighlight)
{
    scanning::WiFiScanTest test;
    const QString a = QStringLiteral("AA:00:00:00:00:01");
    const QString b = QStringLiteral("AA:00:00:00:00:02");
    const QString c = QStringLiteral("AA:00:00:00:00:03");
    // A network of the other band brings its graph forward when a channel graph is showing.
    widget.setCurrentWidget(widget.channels5GHz());
    tabs.addPlotToGraph(a, {network(a, 6, -40)});
    EXPECT_EQ(widget.currentWidget(), widget.channels24GHz());
    tabs.addPlotToGraph(c, {network(c, 36, -50)});
    EXPECT_EQ(widget.currentWidget(), widget.channels5GHz());
    tabs.addPlotToGraph(b, {network(b, 1, -70)});
    EXPECT_EQ(widget.currentWidget(), widget.channels24GHz());
    test.scanedResults.insert(a, {network(a, 6, -40)});
    tabs.highlightGraph(a, test);

    graphs::view::ChannelGraphView* view = widget.channels24GHz();
    settle(view);
    EXPECT_EQ(view->accessibleName(), QStringLiteral("2.4 GHz channel graph"));
    EXPECT_EQ(view->accessibleDescription(), QStringLiteral("2.4 GHz channel graph, 2 networks, highlighted: net-01"));
    EXPECT_EQ(widget.channels5GHz()->accessibleDescription(), QStringLiteral("5 GHz channel graph, 1 networks"));

    // Inside channel 6's shape, under its top: the highlight's gradient (alpha 0.4 at the top,
    // 0.2 at the floor) over the plot area, in the network's colour; beside it no fill.
    const scan::ScanedResultInfo record = network(a, 6, -40);
    const QColor code = graphs::view::toColor(*graphs_test::builtInColours().getColorCode(&record));
    const QColor area = graphs::view::toColor(view->theme().background);
    const QColor filled = pixelAt(view, QPointF(2437.0, -60.0));
    const double alpha = 0.4 - 0.2 * 20.0 / 60.0;
    EXPECT_NEAR(filled.red(), area.red() + (code.red() - area.red()) * alpha, 12);
    EXPECT_NEAR(filled.green(), area.green() + (code.green() - area.green()) * alpha, 12);
    EXPECT_NEAR(filled.blue(), area.blue() + (code.blue() - area.blue()) * alpha, 12);
    EXPECT_EQ(pixelAt(view, QPointF(2470.0, -60.0)), area);

    // A dark desktop gets the established dark plot area.
    QPalette dark = view->palette();
    dark.setColor(QPalette::Window, QColor(50, 50, 50));
    dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
    view->setPalette(dark);
    settle(view);
    EXPECT_EQ(pixelAt(view, QPointF(2470.0, -60.0)), QColor(29, 29, 29));
}

TEST_F(GraphTabs, RankPaintsTheConnectedBarYellowAndNamesNetworksAsPlainText)
{
    scanning::WiFiScanTest test;
    const QString connected = QStringLiteral("AA:00:00:00:00:01");
    const QString other = QStringLiteral("AA:00:00:00:00:02");
    test.activeBSSID = connected;
    tabs.scanDidStartedByUser(test);
    scan::ScanedResultInfo markup = network(other, 11, -40);
    markup.ssid = QStringLiteral("<b>bold</b>\n&amp;");
    tabs.addPlotToGraph(connected, {network(connected, 6, -50)});
    tabs.addPlotToGraph(other, {markup});
    test.scanedResults.insert(connected, {network(connected, 6, -50)});
    test.scanedResults.insert(other, {markup});
    tabs.highlightGraph(connected, test);
    tabs.highlightGraph(other, test);
    widget.setCurrentWidget(widget.signalRank());

    graphs::view::GraphView* view = widget.signalRank()->graphView();
    settle(view);
    // Bars stand at their rank + 1; the connected one (-50) is second.
    EXPECT_EQ(pixelAt(view, QPointF(2.0, -80.0)), QColor(255, 255, 0));
    EXPECT_EQ(pixelAt(view, QPointF(1.0, -80.0)), QColor(0, 113, 187));
    EXPECT_EQ(widget.signalRank()->selectedLabel()->text(), QStringLiteral("<b>bold</b>\u2424&amp;    -40 "));
    EXPECT_EQ(widget.signalRank()->selectedLabel()->textFormat(), Qt::PlainText);
    EXPECT_EQ(view->accessibleDescription(), QStringLiteral("Signal rank graph, 2 networks, strongest first"));

    // The mouse over the first bar makes it the hovered network.
    QTest::mouseMove(view, view->plotGeometry().toPixel(QPointF(1.0, -90.0)).toPoint());
    EXPECT_EQ(widget.signalRank()->hoverLabel()->text(), QStringLiteral("<b>bold</b>\u2424&amp;    -40 "));
}

TEST_F(GraphTabs, SignalGraphsAnnotateTheSampleUnderTheMouse)
{
    scanning::WiFiScanTest test;
    const QString a = QStringLiteral("AA:00:00:00:00:01");
    const QList<scan::ScanedResultInfo> history = {graphs_test::sample(a, -50, 0), graphs_test::sample(a, -60, 10),
                                                   graphs_test::sample(a, -70, 20)};
    test.scanedResults.insert(a, history);
    tabs.addPlotToGraph(a, history);
    tabs.highlightGraph(a, test);
    tabs.updateSSIDDetailsTab(a, test);
    tabs.updateGraphDataPoints(history, a);

    widget.setCurrentWidget(widget.signalHistory());
    graphs::view::GraphView* view = widget.signalHistory()->graphView();
    settle(view);
    QTest::mouseMove(view, view->plotGeometry().toPixel(QPointF(11.0, -30.0)).toPoint());
    EXPECT_EQ(widget.signalHistory()->annotatedSample(), 1);
    // The dashed line stands on the sample 10 seconds back, drawn over the cached picture.
    const QImage shown = view->grab().toImage();
    const QPoint onLine = (view->plotGeometry().toPixel(QPointF(10.0, -20.0)) * shown.devicePixelRatio()).toPoint();
    EXPECT_NE(shown.pixelColor(onLine), view->cachedImage().pixelColor(onLine));

    graphs::view::NetworkDetailsTab* details = widget.networkDetails();
    EXPECT_EQ(details->channelValue()->text(), QStringLiteral("6 (2.4 GHz) "));
    EXPECT_EQ(details->snrValue()->textFormat(), Qt::PlainText);
    QSignalSpy requested(&widget, &graphs::view::GraphTabWidget::samplesWindowRequested);
    ASSERT_TRUE(details->showSamplesButton()->isEnabled());
    details->showSamplesButton()->click();
    ASSERT_EQ(requested.size(), 1);
    EXPECT_EQ(requested.first().at(0).toString(), QStringLiteral("SSID: net-01"));
    EXPECT_FALSE(details->showSamplesButton()->accessibleName().isEmpty());
}

TEST_F(GraphTabs, SignalGraphsStepTheAnnotationAlongTheLineFromTheKeyboard)
{
    scanning::WiFiScanTest test;
    const QString a = QStringLiteral("AA:00:00:00:00:01");
    const QList<scan::ScanedResultInfo> history = {graphs_test::sample(a, -50, 0), graphs_test::sample(a, -60, 10),
                                                   graphs_test::sample(a, -70, 20)};
    test.scanedResults.insert(a, history);
    tabs.addPlotToGraph(a, history);
    tabs.highlightGraph(a, test);
    tabs.updateSSIDDetailsTab(a, test);
    tabs.updateGraphDataPoints(history, a);

    widget.setCurrentWidget(widget.signalHistory());
    graphs::view::SignalHistoryTab* tab = widget.signalHistory();
    graphs::view::GraphView* view = tab->graphView();
    settle(view);
    // Tab reaches the graph from the tab bar, and the focus shows as a frame over the picture.
    widget.tabBar()->setFocus();
    QTest::keyClick(widget.tabBar(), Qt::Key_Tab);
    ASSERT_TRUE(view->hasFocus());
    const QImage framed = view->grab().toImage();
    EXPECT_NE(framed.pixelColor(framed.width() / 2, 1), view->cachedImage().pixelColor(framed.width() / 2, 1));

    // Time runs backwards along this axis: Right starts at the oldest sample, on the left.
    QTest::keyClick(view, Qt::Key_Right);
    EXPECT_EQ(tab->annotatedSample(), 2);
    QTest::keyClick(view, Qt::Key_Right);
    EXPECT_EQ(tab->annotatedSample(), 1);
    EXPECT_EQ(view->accessibleDescription(), QStringLiteral("Signal history graph, 1 networks. RSSI: -60 dBm, Time: 02:29:50"));
    // The dashed line stands on the sample, as the mouse would have put it.
    const QImage shown = view->grab().toImage();
    const QPoint onLine = (view->plotGeometry().toPixel(QPointF(10.0, -20.0)) * shown.devicePixelRatio()).toPoint();
    EXPECT_NE(shown.pixelColor(onLine), view->cachedImage().pixelColor(onLine));
    QTest::keyClick(view, Qt::Key_End);
    EXPECT_EQ(tab->annotatedSample(), 0);
    QTest::keyClick(view, Qt::Key_Right);
    EXPECT_EQ(tab->annotatedSample(), 0);
    // Escape takes the annotation away; with none left it goes on to the window.
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(view, &escape);
    EXPECT_TRUE(escape.isAccepted());
    EXPECT_EQ(tab->annotatedSample(), -1);
    EXPECT_EQ(view->accessibleDescription(), QStringLiteral("Signal history graph, 1 networks"));
    QKeyEvent again(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(view, &again);
    EXPECT_FALSE(again.isAccepted());

    widget.setCurrentWidget(widget.networkDetails());
    graphs::view::GraphView* details = widget.networkDetails()->graphView();
    settle(details);
    details->setFocus();
    QTest::keyClick(details, Qt::Key_Home);
    EXPECT_EQ(details->accessibleDescription(), QStringLiteral("Network details graph, signal and noise of AA:00:00:00:00:01, 1 "
                                                               "samples. RSSI: -50 dBm, Noise: 0 dBm, SNR: 0 dB, Time: 02:30:00"));
    QTest::keyClick(details, Qt::Key_Escape);
    EXPECT_FALSE(details->accessibleDescription().contains(QStringLiteral("RSSI")));
}

TEST_F(GraphTabs, RankStepsTheHoveredBarFromTheKeyboard)
{
    scanning::WiFiScanTest test;
    const QString strong = QStringLiteral("AA:00:00:00:00:01");
    const QString weak = QStringLiteral("AA:00:00:00:00:02");
    tabs.addPlotToGraph(strong, {network(strong, 6, -40)});
    tabs.addPlotToGraph(weak, {network(weak, 11, -70)});
    widget.setCurrentWidget(widget.signalRank());
    graphs::view::SignalRankTab* rank = widget.signalRank();
    graphs::view::GraphView* view = rank->graphView();
    settle(view);
    view->setFocus();

    QTest::keyClick(view, Qt::Key_Right);
    EXPECT_EQ(rank->hoverLabel()->text(), QStringLiteral("net-01    -40 "));
    QTest::keyClick(view, Qt::Key_End);
    EXPECT_EQ(rank->hoverLabel()->text(), QStringLiteral("net-02    -70 "));
    EXPECT_EQ(view->accessibleDescription(), QStringLiteral("Signal rank graph, 2 networks, strongest first. Hovered: net-02 -70"));
    QTest::keyClick(view, Qt::Key_Left);
    QTest::keyClick(view, Qt::Key_Left);
    EXPECT_EQ(rank->hoverLabel()->text(), QStringLiteral("net-01    -40 "));
    QTest::keyClick(view, Qt::Key_Escape);
    EXPECT_TRUE(rank->hoverLabel()->text().isEmpty());
    EXPECT_EQ(view->accessibleDescription(), QStringLiteral("Signal rank graph, 2 networks, strongest first"));
}

} // namespace
