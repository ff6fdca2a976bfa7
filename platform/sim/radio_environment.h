#pragma once

#include "platform/api/scan_result.h"
#include "platform/sim/access_point_population.h"
#include "platform/sim/link_model.h"

#include <QDateTime>
#include <QList>

#include <optional>
#include <vector>

// The simulated air: what every access point sounds like at a given moment. Signals drift over
// minutes and fade from second to second, hotspots come and go, load changes every ten
// seconds. Everything is a function of the seed and the time asked about, so two environments
// built alike answer alike whatever was asked before. Not thread-safe; the owner serialises.
namespace platform::sim {

struct BssLoad {
    int stationCount = 0;
    int utilization255 = 0;
};

class RadioEnvironment {
public:
    RadioEnvironment(std::uint64_t seed, int accessPointCount);

    std::uint64_t seed() const { return seed_; }
    const std::vector<SimulatedAccessPoint>& accessPoints() const { return population_.accessPoints(); }
    std::size_t homeIndex() const { return population_.homeIndex(); }

    bool isPresent(std::size_t index, const QDateTime& at) const;
    // Present and loud enough for the receiver to decode.
    bool isAudible(std::size_t index, const QDateTime& at) const;
    int signalDbm(std::size_t index, const QDateTime& at) const;
    int noiseDbm(int channel, const QDateTime& at) const;
    BssLoad load(std::size_t index, const QDateTime& at) const;
    // The security code the decoding derives from the access point's beacon.
    int securityCode(std::size_t index) const { return securityCodes_[index]; }
    LinkStatistics linkStatistics(std::size_t index, const QDateTime& at) const;
    // The interface's transmit power, which power control moves every few seconds.
    int transmitPowerMw(const QDateTime& at) const;

    std::optional<std::size_t> indexOfBssid(const QString& bssid) const;
    // Where a client joining by name alone would go.
    std::optional<std::size_t> strongestWithSsid(const QByteArray& ssid, const QDateTime& at) const;

    QList<ScanResult> scanAll(const QDateTime& at);
    // A directed probe: hidden networks of that name answer with their real name.
    QList<ScanResult> scanForSsid(const QDateTime& at, const QByteArray& ssid);
    QList<ScanResult> scanForBssid(const QDateTime& at, const QString& bssid);

private:
    ScanResult heard(std::size_t index, const QDateTime& at, bool revealName);
    const QByteArray& currentBeacon(std::size_t index, std::int64_t second);
    double smoothNoise(std::uint64_t key, std::uint64_t stream, std::int64_t second, int knotSeconds) const;

    std::uint64_t seed_;
    AccessPointPopulation population_;
    std::vector<int> securityCodes_;
    // Beacons with the BSS load of the step they were last patched for.
    std::vector<QByteArray> beacons_;
    std::vector<std::int64_t> beaconLoadSteps_;
};

} // namespace platform::sim
