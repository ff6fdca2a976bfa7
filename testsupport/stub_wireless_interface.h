#pragma once

#include "platform/api/wireless_interface.h"

namespace testsupport {

// An interface that reports a given snapshot and answers every other call with nothing; tests
// derive from it to script the calls they are about.
class StubWirelessInterface : public platform::WirelessInterface {
public:
    explicit StubWirelessInterface(platform::InterfaceSnapshot snapshot = {},
                                   core::InterfaceGeneration generation = core::InterfaceGeneration::Later)
        : WirelessInterface(generation), link(std::move(snapshot))
    {
    }

    QString interfaceName() const override { return link.interfaceName; }
    platform::InterfaceSnapshot snapshot() const override { return link; }
    platform::ScanOutcome scanForNetworksWithSSID(const QByteArray&) override { return {}; }
    platform::ScanOutcome scanForNetworksWithBSSID(const QString&) override { return {}; }
    QList<platform::ScanResult> cachedScanResults() const override { return {}; }
    platform::MaybeError setPower(bool) override { return {}; }
    void disassociate() override {}
    platform::MaybeError associateToNetwork(const platform::ScanResult&, const QString&) override { return {}; }
    platform::MaybeError associateToEnterpriseNetwork(const platform::ScanResult&, const QString&, const QString&,
                                                      const QString&, const platform::EapOptions&) override
    {
        return {};
    }
    platform::MaybeError startIBSSModeWithSSID(const QByteArray&, int, int, const QString&) override { return {}; }
    QList<platform::NetworkProfile> networkProfiles() const override { return {}; }
    QList<platform::EapProfile> allUser8021XProfiles() const override { return {}; }
    std::optional<QString> copyPassword(const QByteArray&) const override { return std::nullopt; }
    std::optional<platform::EapCredentials> copyEAPUsernameAndPassword(const QByteArray&) const override
    {
        return std::nullopt;
    }
    std::optional<QString> copyEAPIdentity(const QByteArray&) const override { return std::nullopt; }

    platform::InterfaceSnapshot link;
};

} // namespace testsupport
