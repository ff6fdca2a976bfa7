#pragma once

#include "platform/api/wireless_interface.h"

#include <QStringList>

#include <memory>

// Entry point to a backend: which Wi-Fi interfaces exist, and each one by name.
namespace platform {

class WirelessClient {
public:
    virtual ~WirelessClient() = default;

    virtual QStringList interfaceNames() const = 0;
    // nullptr for a name the backend does not know.
    virtual std::shared_ptr<WirelessInterface> interfaceWithName(const QString& name) = 0;
    // A plain sentence about the backend for the user, e.g. that the radio is simulated; empty
    // when there is nothing to say.
    virtual QString statusText() const = 0;
    // The arguments that select this backend on the command-line tool (e.g. "--simulate").
    virtual QStringList toolBackendArguments() const = 0;
};

} // namespace platform
