// The GUI thread's share of one monitor rescan: the directed scan's networks searched for the
// monitored BSSID, the record, texts and 13-point history updated and the beep restarted. The
// scan itself runs in a worker. The budget is 5 ms; an SSID of a large site may bring back
// hundreds of access points.
#include "monitor/network_monitor.h"
#include "testsupport/fake_timer_source.h"
#include "testsupport/stub_wireless_interface.h"

#include <benchmark/benchmark.h>

namespace {

platform::ScanOutcome outcome(int networks)
{
    platform::ScanOutcome result;
    for (int i = 0; i < networks; ++i) {
        platform::ScanResult network;
        network.ssid = QStringLiteral("campus");
        network.ssidData = "campus";
        network.bssid = QStringLiteral("02:00:00:00:%1:%2").arg(i / 256, 2, 16, QLatin1Char('0')).arg(i % 256, 2, 16, QLatin1Char('0'));
        network.channelNumber = 36;
        network.channelWidth = core::ChannelWidthCode::Width80MHz;
        network.rssiValue = -40 - i % 50;
        network.noiseMeasurement = -92;
        network.phyModes = platform::PhyA | platform::PhyN | platform::PhyAC;
        result.networks.append(network);
    }
    return result;
}

void BM_MonitorRescanHandBack(benchmark::State& state)
{
    const int networks = static_cast<int>(state.range(0));
    testsupport::ManualClock clock(QDateTime(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC));
    testsupport::FakeTimerSource timers(clock);
    scan::ScanedResultInfo record;
    record.ssid = QStringLiteral("campus");
    // The last one heard: the whole list is searched.
    record.bssid = outcome(networks).networks.last().bssid;
    monitor::NetworkMonitor monitor(record, std::make_shared<testsupport::StubWirelessInterface>(), 5, timers, [] {});
    monitor.initWindowToShow();
    monitor.beeper().switchBeeper(true, -60);
    const platform::ScanOutcome heard = outcome(networks);
    for (auto _ : state) {
        monitor.applyRescan(heard);
        benchmark::DoNotOptimize(monitor.texts().signal);
    }
}
BENCHMARK(BM_MonitorRescanHandBack)->Arg(1)->Arg(50)->Arg(500)->Unit(benchmark::kMicrosecond);

} // namespace
