#include "scan/scaned_result_info.h"

#include <QByteArray>

#include <benchmark/benchmark.h>

namespace {

// The elements of a typical dual-stream 802.11n access point: SSID, rates, DS, TIM, country,
// BSS load, RSN, HT capabilities and operation, extended capabilities, WMM and WPS.
QByteArray typicalBeacon()
{
    return QByteArray::fromHex(
        "0008 4f66666963652d31"
        "0108 8c129824b048606c"
        "0301 24"
        "0504 00020000"
        "0706 44452024081e"
        "0b05 0300520000"
        "3014 0100000fac040100000fac040100000fac020c00"
        "2d1a ef091bffff000000000000000000000000000000000000000000"
        "3d16 24050400000000000000000000000000000000000000"
        "7f08 0400000000000040"
        "dd18 0050f2020101800003a4000027a4000042435e0062322f00"
        "dd0e 0050f204104a0001101044000102");
}

void parseAndCompleteRates(benchmark::State& state)
{
    const QByteArray elements = typicalBeacon();
    for (auto _ : state) {
        scan::ScanedResultInfo record;
        record.channelWidth = 40;
        record.parseInformationElement(elements);
        record.populateMaxDataRate();
        benchmark::DoNotOptimize(record.supportedDataRates);
    }
    state.SetItemsProcessed(state.iterations());
}

}  // namespace

BENCHMARK(parseAndCompleteRates);
