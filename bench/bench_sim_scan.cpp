#include "testsupport/manual_clock.h"
#include "platform/sim/simulated_wireless_client.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>

namespace {

// A full scan through the interface, each one ten seconds after the last so the BSS load of
// every beacon is rebuilt and signals are recomputed, as in a running scan test.
void simulatedScan(benchmark::State& state)
{
    auto clock = std::make_shared<testsupport::ManualClock>(QDateTime::fromSecsSinceEpoch(1'750'000'000));
    platform::sim::SimulatedWirelessClient client(platform::sim::SimulationReason::ChosenOnCommandLine,
                                                  {static_cast<int>(state.range(0)), platform::sim::defaultSimulationSeed, {}}, clock);
    const auto wifi = client.interfaceWithName(QStringLiteral("sim0"));
    for (auto _ : state) {
        clock->advance(std::chrono::seconds(10));
        benchmark::DoNotOptimize(wifi->scanForNetworksWithSSID({}));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(simulatedScan)->Arg(40)->Arg(500)->Arg(5000)->Unit(benchmark::kMillisecond);

} // namespace
