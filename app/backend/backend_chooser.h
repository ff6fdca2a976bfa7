#pragma once

#include "platform/api/wireless_client.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

// Picks the wireless backend for a run: a replayed capture, the simulated radio environment,
// or the Linux wireless stack with the simulated environment where no Wi-Fi interface exists.
namespace app {

struct BackendOptions {
    QString interfaceName;      // empty: the backend's first interface
    bool simulate = false;
    std::optional<int> simulatedAccessPoints;  // the simulator's own default when absent
    std::optional<std::uint64_t> simulationSeed;
    QString captureFile;        // non-empty: replay this file
};

struct Backend {
    std::shared_ptr<platform::WirelessClient> client;
    std::shared_ptr<platform::WirelessInterface> interface;
    // What to tell the user about the backend, e.g. that the radio is simulated; may be empty.
    QString statusText;
};

// nullopt with *error set to a readable sentence when the options name something that is not
// there (a capture that cannot be read, an interface of that name).
std::optional<Backend> chooseBackend(const BackendOptions& options, QString* error);

} // namespace app
