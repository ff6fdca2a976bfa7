// One scan's update of the results table as the GUI thread sees it: new rows handed to the
// table model, sorted by name, the item model reset, the selection kept, and the view laid out
// and painted offscreen. The budget is 30 ms for 2000 access points.
#include "core/memory_settings.h"
#include "scanning/results_table_model.h"
#include "scanning/view/results_table_view.h"
#include "scanning/wifi_scan_test.h"

#include <QApplication>
#include <QDateTime>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

QApplication& application()
{
    static int argc = 3;
    static char name[] = "bench_table_update";
    static char platform[] = "-platform";
    static char offscreen[] = "offscreen";
    static char* argv[] = {name, platform, offscreen, nullptr};
    static QApplication app(argc, argv);
    return app;
}

scan::ScanedResultInfo record(int i, int scan)
{
    scan::ScanedResultInfo r;
    r.bssid = QStringLiteral("02:00:00:%1:%2:%3")
                  .arg((i >> 16) & 0xff, 2, 16, QLatin1Char('0'))
                  .arg((i >> 8) & 0xff, 2, 16, QLatin1Char('0'))
                  .arg(i & 0xff, 2, 16, QLatin1Char('0'))
                  .toUpper();
    r.ssid = QStringLiteral("Network %1").arg((i * 7919) % 1000);
    r.originalChannel = i % 2 ? 1 + i % 13 : 36 + 4 * (i % 20);
    r.channel = QString::number(r.originalChannel);
    r.channelBond = r.originalChannel <= 14 ? 2.4 : 5.0;
    r.channelWidth = 20;
    r.rssi = -40 - (i + scan) % 55;
    r.noise = -95;
    r.singnalToNoise = r.rssi - r.noise;
    r.vendorName = QStringLiteral("Vendor %1").arg(i % 50);
    r.supportedPHYModes = QStringLiteral("b/g/n");
    r.lastSeen = QDateTime::fromSecsSinceEpoch(1'750'000'000 + scan * 5);
    return r;
}

// histories: whether the test also holds each network's samples, as a running test does; the
// table then keeps every network chosen for plotting ("plot all" is on by default).
void tableUpdate(benchmark::State& state, bool histories)
{
    QApplication& app = application();
    const int accessPoints = static_cast<int>(state.range(0));
    core::MemorySettings settings;
    scanning::ResultsTableModel results(settings);
    scanning::view::ResultsTableView view(results, settings);
    view.resize(1280, 800);
    view.show();
    auto test = std::make_shared<scanning::WiFiScanTest>();
    results.setCurrentTest(test);
    int scan = 0;
    const auto deliver = [&] {
        QList<scan::ScanedResultInfo> rows;
        rows.reserve(accessPoints);
        for (int i = 0; i < accessPoints; ++i)
            rows.append(record(i, scan));
        if (histories) {
            for (const scan::ScanedResultInfo& row : rows)
                test->scanedResults[row.bssid] = {row};
        }
        test->scanedData1 = std::move(rows);
        ++scan;
    };
    deliver();
    results.updateView(test);
    results.setSelectedBssids({test->scanedData1.at(accessPoints / 2).bssid});
    app.processEvents();
    for (auto _ : state) {
        state.PauseTiming();
        deliver();
        state.ResumeTiming();
        results.updateView(test);
        view.viewport()->repaint();
        app.processEvents();
    }
    state.counters["rows"] = view.model()->rowCount();
    state.counters["plotted"] = static_cast<double>(results.selectedBssids().size());
}

void BM_TableUpdateOnGuiThread(benchmark::State& state) { tableUpdate(state, false); }
void BM_TableUpdatePlottingAll(benchmark::State& state) { tableUpdate(state, true); }

} // namespace

BENCHMARK(BM_TableUpdateOnGuiThread)->Arg(500)->Arg(2000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_TableUpdatePlottingAll)->Arg(500)->Arg(2000)->Unit(benchmark::kMillisecond)->UseRealTime();
