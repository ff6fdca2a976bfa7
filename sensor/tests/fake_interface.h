#pragma once

#include "platform/api/wireless_interface.h"

// An interface that only reports a fixed snapshot; everything else is unsupported.
class FakeInterface : public platform::WirelessInterface {
public:
    explicit FakeInterface(platform::InterfaceSnapshot snapshot,
                           core::InterfaceGeneration generation = core::InterfaceGeneration::Later)
        : WirelessInterface(generation), snapshot_(std::move(snapshot))
    {
    }

    QString interfaceName() const override { return snapshot_.interfaceName; }
    platform::InterfaceSnapshot snapshot() const override { return snapshot_; }
    platform::ScanOutcome scanForNetworksWithSSID(const QByteArray&) override { return {}; }
    platform::ScanOutcome scanForNetworksWithBSSID(const QString&) override { return {}; }
    QList<platform::ScanResult> cachedScanResults() const override { return {}; }
    platform::MaybeError setPower(bool) override { return {}; }
    void disassociate() override {}
    platform::MaybeError associateToNetwork(const platform::ScanResult&, const QString&) override { return {}; }
    platform::MaybeError associateToEnterpriseNetwork(const platform::ScanResult&, const QString&, const QString&,
                                                      const QString&) override
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

private:
    platform::InterfaceSnapshot snapshot_;
};
