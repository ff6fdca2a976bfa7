#include "platform/sim/simulated_wireless_client.h"

#include "platform/sim/simulated_wireless_interface.h"
#include "platform/sim/simulation_control.h"

#include <algorithm>

namespace platform::sim {

SimulatedWirelessClient::SimulatedWirelessClient(SimulationReason reason, SimulationSettings settings,
                                                 std::shared_ptr<const Clock> clock)
    : reason_(reason), settings_(settings)
{
    settings_.accessPointCount = std::clamp(settings_.accessPointCount, 1, maximumAccessPointCount);
    if (!clock)
        clock = std::make_shared<SystemClock>();
    interface_ = std::make_shared<SimulatedWirelessInterface>(
        QString::fromLatin1(interfaceNameText),
        std::make_unique<RadioEnvironment>(settings_.seed, settings_.accessPointCount), std::move(clock));
    if (!settings_.controlFile.isEmpty())
        control_ = std::make_unique<SimulationControl>(settings_.controlFile, interface_);
}

SimulatedWirelessClient::~SimulatedWirelessClient() = default;

QStringList SimulatedWirelessClient::interfaceNames() const { return {QString::fromLatin1(interfaceNameText)}; }

std::shared_ptr<WirelessInterface> SimulatedWirelessClient::interfaceWithName(const QString& name)
{
    return name == QLatin1String(interfaceNameText) ? interface_ : nullptr;
}

QString SimulatedWirelessClient::statusText() const
{
    return reason_ == SimulationReason::NoInterfaceFound
               ? QStringLiteral("Simulated environment: no Wi-Fi interface found")
               : QStringLiteral("Simulated environment (chosen with --simulate)");
}

QStringList SimulatedWirelessClient::toolBackendArguments() const
{
    QStringList arguments{QStringLiteral("--simulate=%1").arg(settings_.accessPointCount)};
    if (settings_.seed != defaultSimulationSeed)
        arguments.append(QStringLiteral("--seed=%1").arg(settings_.seed));
    return arguments;
}

} // namespace platform::sim
