// One tick of the interface tab's one-second refresh as the GUI thread sees it, with the tab
// shown and 300 samples in the graph: the interface read, the field texts, the sample, the
// labels set and the graph's scene handed to its render thread, then a paint of the tab. The
// budget is 5 ms; the tool run and the directed scan are not on this thread.
#include "interface/interface_info_controller.h"
#include "interface/view/interface_tab.h"
#include "platform/sim/simulated_wireless_client.h"
#include "testsupport/fake_timer_source.h"
#include "testsupport/manual_clock.h"

#include <QApplication>

#include <benchmark/benchmark.h>

namespace {

QApplication& application()
{
    static int argc = 3;
    static char name[] = "bench_interface_refresh";
    static char platform[] = "-platform";
    static char offscreen[] = "offscreen";
    static char* argv[] = {name, platform, offscreen, nullptr};
    static QApplication app(argc, argv);
    return app;
}

class NoTool : public platform::CommandRunner {
public:
    platform::CommandOutput runShellCommand(const QString&) override { return {}; }
};

void BM_InterfaceRefreshOnGuiThread(benchmark::State& state)
{
    QApplication& app = application();
    auto clock = std::make_shared<testsupport::ManualClock>(QDateTime::fromSecsSinceEpoch(1'750'000'000));
    platform::sim::SimulatedWirelessClient client(platform::sim::SimulationReason::ChosenOnCommandLine, {}, clock);
    testsupport::FakeTimerSource timers(*clock);
    NoTool tool;
    connection::InterfaceInfoController controller(client.interfaceWithName(QStringLiteral("sim0")), timers, tool,
                                                   QStringLiteral("true"), {});
    connection::view::InterfaceTab tab(controller, client.interfaceNames());
    tab.resize(1280, 800);
    tab.show();
    controller.waitForBackgroundWork();
    for (int i = 0; i < connection::maxInterfaceSamples; ++i) {
        clock->advance(std::chrono::seconds(1));
        controller.updateInterfaceInfoTab();
    }
    app.processEvents();
    for (auto _ : state) {
        clock->advance(std::chrono::seconds(1));
        controller.updateInterfaceInfoTab();
        tab.repaint();
    }
    state.counters["samples"] = static_cast<double>(controller.graphDataPoints().size());
}
BENCHMARK(BM_InterfaceRefreshOnGuiThread)->Unit(benchmark::kMillisecond);

} // namespace
