// The graphs' costs: a full refresh rendered off the GUI thread (500 and 2000 channel-graph
// curves, 2000 rank bars, 500 history lines of 13 samples, bare and with their values), the
// GUI thread's share of a hover (copy the cached picture, draw one selection line and its text
// box), and the three report images. Budgets: channel graph 250 ms (aim 150), hover 5 ms, rank
// and history 100 ms, the report images 1 s together, all for 500 networks unless named.
#include "core/memory_settings.h"
#include "graphs/color_codes_manager.h"
#include "graphs/graph_view_tab_set.h"
#include "graphs/view/graph_scenes.h"
#include "graphs/view/report_graph_images.h"
#include "plot/renderer.h"
#include "scanning/wifi_scan_test.h"

#include <QDateTime>
#include <QGuiApplication>
#include <QPainter>
#include <QTemporaryDir>
#include <QThreadPool>

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>

namespace {

const QSize frameSize(1280, 720);

QGuiApplication& application()
{
    static int argc = 3;
    static char name[] = "bench_graph_render";
    static char platform[] = "-platform";
    static char offscreen[] = "offscreen";
    static char* argv[] = {name, platform, offscreen, nullptr};
    static QGuiApplication app(argc, argv);
    return app;
}

scan::ScanedResultInfo record(int i, bool band24, int secondsAgo)
{
    scan::ScanedResultInfo r;
    r.bssid = QStringLiteral("02:00:00:%1:%2:%3")
                  .arg((i >> 16) & 0xff, 2, 16, QLatin1Char('0'))
                  .arg((i >> 8) & 0xff, 2, 16, QLatin1Char('0'))
                  .arg(i & 0xff, 2, 16, QLatin1Char('0'))
                  .toUpper();
    r.ssid = QStringLiteral("Network %1").arg((i * 7919) % 1000);
    r.originalChannel = band24 ? 1 + i % 13 : 36 + 4 * (i % 20);
    r.channel = QString::number(r.originalChannel);
    r.channelBond = band24 ? 2.4 : 5.0;
    r.channelWidth = i % 3 == 0 ? 40 : 20;
    r.channelOffset = i % 2 ? 1 : -1;
    r.rssi = -35 - (i * 37 + secondsAgo) % 60;
    r.lastSeen = QDateTime(QDate(2026, 1, 1), QTime(12, 0)).addSecs(-secondsAgo);
    return r;
}

// A tab set after a scan of n networks of one band (13 samples each), one highlighted.
struct Scanned {
    core::MemorySettings settings{QVariantMap{{"showGridLinesOnGraph", 1}, {"showRSSIValueOnGraph", 0}}};
    graphs::GraphViewTabSet tabs{graphs::ColorCodesManager::sharedColorManager(), settings};
    scanning::WiFiScanTest test;

    Scanned(int n, bool band24)
    {
        application();
        test.refreshInterval = 10;
        for (int i = 0; i < n; ++i) {
            QList<scan::ScanedResultInfo> history;
            for (int s = 0; s < 13; ++s)
                history.append(record(i, band24, s * 10));
            test.scanedResults.insert(history.first().bssid, history);
            tabs.addPlotToGraph(history.first().bssid, history);
        }
        const QString first = test.scanedResults.firstKey();
        tabs.highlightGraph(first, test);
        tabs.reloadGraph(test);
    }
};

// Renders on a thread of a pool of our own, as the views do, and times only the render.
void renderOffGuiThread(benchmark::State& state, const plot::Graph& scene)
{
    QThreadPool pool;
    pool.setMaxThreadCount(1);
    for (auto _ : state) {
        double seconds = 0.0;
        pool.start([&] {
            const auto start = std::chrono::steady_clock::now();
            const QImage image = plot::renderImage(scene, frameSize);
            benchmark::DoNotOptimize(image.constBits());
            seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        });
        pool.waitForDone();
        state.SetIterationTime(seconds);
    }
}

void BM_ChannelGraphRender(benchmark::State& state)
{
    Scanned scanned(static_cast<int>(state.range(0)), true);
    renderOffGuiThread(state, graphs::view::channelScene(scanned.tabs.channels24GHz(), graphs::GraphTheme{}));
}
BENCHMARK(BM_ChannelGraphRender)->Arg(500)->Arg(2000)->UseManualTime()->Unit(benchmark::kMillisecond);

// What the GUI thread does per refresh before handing the picture over: copy the model into a scene.
void BM_ChannelGraphScene(benchmark::State& state)
{
    Scanned scanned(static_cast<int>(state.range(0)), true);
    for (auto _ : state)
        benchmark::DoNotOptimize(graphs::view::channelScene(scanned.tabs.channels24GHz(), graphs::GraphTheme{}));
}
BENCHMARK(BM_ChannelGraphScene)->Arg(500)->Arg(2000)->Unit(benchmark::kMillisecond);

void BM_RankGraphRender(benchmark::State& state)
{
    Scanned scanned(static_cast<int>(state.range(0)), false);
    renderOffGuiThread(state, graphs::view::rankScene(scanned.tabs.signalRank(), graphs::GraphTheme{}));
}
BENCHMARK(BM_RankGraphRender)->Arg(2000)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_HistoryGraphRender(benchmark::State& state)
{
    Scanned scanned(static_cast<int>(state.range(0)), true);
    renderOffGuiThread(state, graphs::view::historyScene(scanned.tabs.signalHistory(), graphs::GraphTheme{}));
}
BENCHMARK(BM_HistoryGraphRender)->Arg(500)->UseManualTime()->Unit(benchmark::kMillisecond);

// The same with the value switch on: a dot and an RSSI label at every sample.
void BM_HistoryGraphRenderWithValues(benchmark::State& state)
{
    Scanned scanned(static_cast<int>(state.range(0)), true);
    scanned.settings.setValue(QStringLiteral("showRSSIValueOnGraph"), 1);
    scanned.tabs.signalHistory().refreshSettings();
    renderOffGuiThread(state, graphs::view::historyScene(scanned.tabs.signalHistory(), graphs::GraphTheme{}));
}
BENCHMARK(BM_HistoryGraphRenderWithValues)->Arg(500)->UseManualTime()->Unit(benchmark::kMillisecond);

// The GUI thread's hover: the cached picture copied to the screen's buffer, then the dashed
// line through one sample and its text box drawn over it.
void BM_HoverOverCache(benchmark::State& state)
{
    Scanned scanned(500, true);
    const plot::Graph scene = graphs::view::historyScene(scanned.tabs.signalHistory(), graphs::GraphTheme{});
    const QImage cache = plot::renderImage(scene, frameSize);
    QImage screen(frameSize, QImage::Format_ARGB32_Premultiplied);
    const graphs::SignalHistoryModel& history = scanned.tabs.signalHistory();
    int index = 0;
    for (auto _ : state) {
        index = (index + 1) % 13;
        const std::optional<graphs::SelectionLine> line = history.selectionLine(index);
        QPainter painter(&screen);
        painter.drawImage(QPoint(0, 0), cache);
        plot::renderOverlay(scene, {graphs::view::selectionLinePlot(*line)},
                            graphs::view::annotationAt(history.annotationText(index), line->to, graphs::GraphTheme{}),
                            painter, QSizeF(frameSize));
    }
}
BENCHMARK(BM_HoverOverCache)->Unit(benchmark::kMillisecond);

void BM_ReportImages(benchmark::State& state)
{
    Scanned scanned(static_cast<int>(state.range(0)) / 2, true);
    for (int i = 0; i < state.range(0) / 2; ++i) {
        const scan::ScanedResultInfo r = record(100000 + i, false, 0);
        scanned.tabs.addPlotToGraph(r.bssid, {r});
    }
    graphs::view::ReportGraphImages images(scanned.tabs);
    images.refresh();
    const scanning::ReportGraphs graphs = images.reportGraphs();
    for (auto _ : state) {
        QTemporaryDir folder;
        for (scanning::GraphImageProvider* graph : {graphs.channels24GHz, graphs.channels5GHz, graphs.signalRank})
            benchmark::DoNotOptimize(graph->saveGraphAsImageAtPath(folder.path()));
    }
}
BENCHMARK(BM_ReportImages)->Arg(500)->Unit(benchmark::kMillisecond);

} // namespace
