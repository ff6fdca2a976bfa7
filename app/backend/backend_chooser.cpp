#include "app/backend/backend_chooser.h"

#include "platform/capture/capture_replay_client.h"
#include "platform/linux/linux_wireless_client.h"
#include "platform/sim/simulated_wireless_client.h"

#include <algorithm>

namespace app {
namespace {

// A backend with one fixed interface accepts only that interface's name.
std::optional<Backend> withOnlyInterface(std::shared_ptr<platform::WirelessClient> client,
                                         const QString& requestedName, const QString& what, QString* error)
{
    const QString name = client->interfaceNames().value(0);
    if (!requestedName.isEmpty() && requestedName != name) {
        *error = QStringLiteral("%1 has no interface %2; its interface is %3").arg(what, requestedName, name);
        return std::nullopt;
    }
    auto interface = client->interfaceWithName(name);
    const QString status = client->statusText();
    return Backend{std::move(client), std::move(interface), status};
}

std::optional<Backend> simulated(platform::sim::SimulationReason reason, const BackendOptions& options,
                                 const QString& requestedName, QString* error)
{
    platform::sim::SimulationSettings settings;
    if (options.simulatedAccessPoints)
        settings.accessPointCount =
            std::clamp(*options.simulatedAccessPoints, 1, platform::sim::maximumAccessPointCount);
    if (options.simulationSeed)
        settings.seed = *options.simulationSeed;
    // Read here, once per backend, so the simulator itself never looks at the environment.
    settings.controlFile = qEnvironmentVariable("SKYVANE_SIM_CONTROL");
    return withOnlyInterface(std::make_shared<platform::sim::SimulatedWirelessClient>(reason, settings),
                             requestedName, QStringLiteral("The simulated environment"), error);
}

} // namespace

std::optional<Backend> chooseBackend(const BackendOptions& options, QString* error)
{
    if (!options.captureFile.isEmpty()) {
        QString reason;
        auto replay = platform::capture::CaptureReplayInterface::open(options.captureFile, &reason);
        if (!replay) {
            *error = QStringLiteral("cannot replay %1: %2").arg(options.captureFile, reason);
            return std::nullopt;
        }
        return withOnlyInterface(std::make_shared<platform::capture::CaptureReplayClient>(std::move(replay)),
                                 options.interfaceName, QStringLiteral("The replayed capture"), error);
    }
    if (options.simulate)
        return simulated(platform::sim::SimulationReason::ChosenOnCommandLine, options, options.interfaceName, error);

    auto stack = std::make_shared<platform::LinuxWirelessClient>();
    const QStringList names = stack->interfaceNames();
    if (!options.interfaceName.isEmpty()) {
        auto interface = stack->interfaceWithName(options.interfaceName);
        if (!interface) {
            *error = names.isEmpty()
                         ? QStringLiteral("no Wi-Fi interface %1: %2").arg(options.interfaceName, stack->statusText())
                         : QStringLiteral("no Wi-Fi interface %1; found %2")
                               .arg(options.interfaceName, names.join(QStringLiteral(", ")));
            return std::nullopt;
        }
        const QString status = stack->statusText();
        return Backend{std::move(stack), std::move(interface), status};
    }
    if (names.isEmpty()) {
        const QString stackReason = stack->statusText();
        auto backend = simulated(platform::sim::SimulationReason::NoInterfaceFound, options, {}, error);
        // The Linux backend's own words say why (no wireless stack, no device), unless they only
        // repeat that no interface was found.
        if (backend && !stackReason.isEmpty()
            && stackReason.compare(QStringLiteral("No Wi-Fi interface found"), Qt::CaseInsensitive) != 0)
            backend->statusText += QStringLiteral(" (%1)").arg(stackReason);
        return backend;
    }
    auto interface = stack->interfaceWithName(names.first());
    if (!interface) {
        *error = QStringLiteral("Wi-Fi interface %1 disappeared while starting").arg(names.first());
        return std::nullopt;
    }
    const QString status = stack->statusText();
    return Backend{std::move(stack), std::move(interface), status};
}

} // namespace app
