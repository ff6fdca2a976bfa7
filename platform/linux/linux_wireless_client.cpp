#include "platform/linux/linux_wireless_client.h"

#include "platform/linux/linux_wireless_interface.h"
#include "platform/linux/nl80211_socket.h"

#include <linux/nl80211.h>

#include <set>

namespace platform {

LinuxWirelessClient::LinuxWirelessClient(std::shared_ptr<NetworkManagerClient> networkManager)
    : networkManager_(networkManager ? std::move(networkManager) : std::make_shared<NetworkManagerClient>())
{
}

LinuxWirelessClient::~LinuxWirelessClient() = default;

QStringList LinuxWirelessClient::interfaceNames() const
{
    platform::nl80211::RequestSocket socket;
    if (socket.openError())
        return {};
    std::set<std::uint32_t> stationRadios;
    for (const auto& wiphy : socket.wiphys()) {
        if (wiphy.supportsStation)
            stationRadios.insert(wiphy.index);
    }
    QStringList names;
    for (const auto& info : socket.interfaces()) {
        // A monitor interface on the same radio cannot scan or join; it is left to capture tools.
        if (info.wiphy && stationRadios.count(*info.wiphy) != 0 && info.iftype != NL80211_IFTYPE_MONITOR
            && !info.name.isEmpty())
            names.append(info.name);
    }
    names.sort();
    return names;
}

std::shared_ptr<WirelessInterface> LinuxWirelessClient::interfaceWithName(const QString& name)
{
    if (!interfaceNames().contains(name))
        return nullptr;
    std::lock_guard lock(mutex_);
    auto& slot = interfaces_[name];
    if (!slot)
        slot = std::make_shared<LinuxWirelessInterface>(name, networkManager_);
    return slot;
}

QString LinuxWirelessClient::statusText() const
{
    platform::nl80211::RequestSocket socket;
    if (socket.openError())
        return socket.openError()->description;
    if (interfaceNames().isEmpty())
        return QStringLiteral("No Wi-Fi interface found");
    if (!networkManager_->isAvailable())
        return QStringLiteral("NetworkManager is not running: scans show cached results only");
    return {};
}

QStringList LinuxWirelessClient::toolBackendArguments() const
{
    // The command-line tool picks this backend by itself whenever a Wi-Fi interface exists.
    return {};
}

} // namespace platform
