#include "core/memory_settings.h"
#include "testsupport/manual_clock.h"
#include "platform/sim/simulated_wireless_client.h"
#include "scan/record_builder.h"
#include "scan/scanner_utils.h"
#include "testsupport/literal_scan_store.h"
#include "scanning/filter_criteria.h"
#include "scanning/scan_database.h"
#include "scanning/wifi_scan_test.h"

#include <QHash>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>

namespace {

constexpr int intervalSeconds = 10;

enum class Store { Batched, Literal };

// One refresh of a running test after the radio has answered: store the scan, read the merged
// view back, turn every row into a record and add it to its network's history.
void processScan(scanning::ScanDatabase& database, Store store, scanning::WiFiScanTest& test, const platform::ScanOutcome& outcome,
                 const QString& activeBssid, const QDateTime& now)
{
    const double seconds = static_cast<double>(now.toMSecsSinceEpoch()) / 1000.0;
    QHash<QString, std::shared_ptr<const platform::ScanResult>> networks;
    QList<scanning::ObservationRow> rows;
    rows.reserve(outcome.networks.size());
    for (const platform::ScanResult& network : outcome.networks) {
        networks.insert(scan::ScannerUtils::normalizeMAC(network.bssid), std::make_shared<const platform::ScanResult>(network));
        rows.append(scanning::ObservationRow::fromScanResult(network, QString::number(network.channelNumber), seconds,
                                                   core::InterfaceGeneration::Later));
    }
    if (store == Store::Batched)
        database.storeScan(rows, true);
    else
        testsupport::literal_scan_store::storeScan(database, rows, true);

    const auto shown = database.readForDisplay(QString(), activeBssid, true);
    benchmark::DoNotOptimize(database.matchCount(QString(), activeBssid));
    if (!shown)
        return;
    const QHash<QString, QString> securityTexts;
    test.scanedData1.clear();
    for (const scan::StoredObservation& row : *shown) {
        static const core::MemorySettings settings;
        scan::ScanedResultInfo record =
            scan::buildRecord(row, networks.value(row.bssid), core::InterfaceGeneration::Later, settings, &securityTexts);
        test.addSample(record, intervalSeconds, now);
        test.scanedData1.append(record);
    }
}

void discardMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

void scanCycle(benchmark::State& state, Store store)
{
    // The hidden-network lines are part of a cycle, but their cost is the terminal's, not ours.
    const QtMessageHandler previousHandler = qInstallMessageHandler(discardMessage);
    const int accessPoints = static_cast<int>(state.range(0));
    auto clock = std::make_shared<testsupport::ManualClock>(QDateTime::fromSecsSinceEpoch(1'750'000'000));
    platform::sim::SimulatedWirelessClient client(platform::sim::SimulationReason::ChosenOnCommandLine,
                                                  {accessPoints, platform::sim::defaultSimulationSeed, {}}, clock);
    const auto wifi = client.interfaceWithName(QStringLiteral("sim0"));
    const QString activeBssid = scan::ScannerUtils::normalizeMAC(wifi->snapshot().bssid);

    QTemporaryDir dir;
    scanning::ScanDatabase database(dir.filePath(QStringLiteral("Skyvane/Database.sqlite")));
    database.updateDatabase();
    if (store == Store::Literal)
        testsupport::literal_scan_store::dropIndexes(database);
    database.deleteAll();
    scanning::WiFiScanTest test;
    test.refreshInterval = intervalSeconds;

    for (auto _ : state) {
        state.PauseTiming();
        clock->advance(std::chrono::seconds(intervalSeconds));
        const platform::ScanOutcome outcome = wifi->scanForNetworksWithSSID({});
        state.ResumeTiming();
        processScan(database, store, test, outcome, activeBssid, clock->now());
    }
    state.SetItemsProcessed(state.iterations() * accessPoints);
    qInstallMessageHandler(previousHandler);
}

void BM_ScanCycle(benchmark::State& state) { scanCycle(state, Store::Batched); }
// Every statement compiled from its text and committed on its own, without indexes.
void BM_ScanCycleLiteral(benchmark::State& state) { scanCycle(state, Store::Literal); }

// The filter bar's share of a processed scan on the GUI thread: every shown network's name and
// channel offered to the completion lists, which after the first scan hold them all already.
void BM_FilterCompletionNames(benchmark::State& state)
{
    const int accessPoints = static_cast<int>(state.range(0));
    QStringList names;
    QStringList channels;
    for (int i = 0; i < accessPoints; ++i) {
        names.append(QStringLiteral("Network %1").arg(i));
        channels.append(QString::number(i % 2 ? 1 + i % 13 : 36 + 4 * (i % 20)));
    }
    scanning::FilterCriteria filter;
    for (auto _ : state) {
        for (int i = 0; i < accessPoints; ++i) {
            filter.addSSID(names.at(i));
            filter.addChannel(channels.at(i));
        }
    }
    state.SetItemsProcessed(state.iterations() * accessPoints);
}

BENCHMARK(BM_ScanCycle)->Arg(50)->Arg(500)->Arg(2000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterCompletionNames)->Arg(500)->Arg(2000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ScanCycleLiteral)->Arg(50)->Arg(500)->Unit(benchmark::kMillisecond);
// A literal cycle of 2000 networks takes seconds; a few are enough for its median.
BENCHMARK(BM_ScanCycleLiteral)->Arg(2000)->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace
