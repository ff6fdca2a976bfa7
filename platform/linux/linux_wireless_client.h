#pragma once

#include "platform/api/wireless_client.h"
#include "platform/linux/network_manager_client.h"

#include <QMap>

#include <memory>
#include <mutex>

// The Linux wireless stack as a backend: every network device whose radio can act as a station.
// When the kernel has no wireless stack, there is no device, or NetworkManager is absent, it
// says so in plain words; with no interfaces at all the application turns to the simulation.
namespace platform {

class LinuxWirelessClient final : public WirelessClient {
public:
    // Without a client of its own it talks to NetworkManager on the system bus.
    explicit LinuxWirelessClient(std::shared_ptr<NetworkManagerClient> networkManager = nullptr);
    ~LinuxWirelessClient() override;

    QStringList interfaceNames() const override;
    std::shared_ptr<WirelessInterface> interfaceWithName(const QString& name) override;
    QString statusText() const override;
    QStringList toolBackendArguments() const override;

private:
    std::shared_ptr<NetworkManagerClient> networkManager_;
    std::mutex mutex_;
    QMap<QString, std::shared_ptr<WirelessInterface>> interfaces_;
};

} // namespace platform
