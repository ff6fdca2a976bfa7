#pragma once

#include "platform/api/clock.h"
#include "platform/api/wireless_client.h"
#include "platform/sim/access_point_population.h"

#include <cstdint>
#include <memory>


// The backend of the simulated radio environment: one interface, "sim0", in a seeded world.
namespace platform::sim {

class SimulatedWirelessInterface;
class SimulationControl;

// Why the simulation runs decides what the user is told about it.
enum class SimulationReason { NoInterfaceFound, ChosenOnCommandLine };

struct SimulationSettings {
    int accessPointCount = defaultAccessPointCount;
    std::uint64_t seed = defaultSimulationSeed;
    // Non-empty: a file through which the radio is switched off and into access-point mode
    // while the program runs (see SimulationControl).
    QString controlFile;
};

class SimulatedWirelessClient : public WirelessClient {
public:
    static constexpr char interfaceNameText[] = "sim0";

    // A null clock means the system clock.
    explicit SimulatedWirelessClient(SimulationReason reason, SimulationSettings settings = {},
                                     std::shared_ptr<const Clock> clock = nullptr);
    ~SimulatedWirelessClient() override;

    QStringList interfaceNames() const override;
    std::shared_ptr<WirelessInterface> interfaceWithName(const QString& name) override;
    QString statusText() const override;
    // "--simulate=N", and "--seed=S" when the seed is not the default one.
    QStringList toolBackendArguments() const override;

private:
    SimulationReason reason_;
    SimulationSettings settings_;
    std::shared_ptr<SimulatedWirelessInterface> interface_;
    std::unique_ptr<SimulationControl> control_;
};

} // namespace platform::sim
