#include "platform/sim/radio_environment.h"

#include "platform/sim/beacon_elements.h"
#include "platform/sim/element_builder.h"
#include "platform/sim/sim_random.h"
#include "scan/scan_result_derivation.h"
#include "scan/scanner_utils.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace platform::sim {

namespace {

enum Stream : std::uint64_t {
    StreamDrift = 1, StreamFade, StreamDeepFade, StreamPhase, StreamPresence, StreamNoise, StreamNoiseStep,
    StreamStations, StreamUtilization, StreamRate, StreamPower,
};

constexpr int presencePeriodSeconds = 300;
constexpr double presenceShare = 0.55;
constexpr int loadStepSeconds = 10;
constexpr int sensitivityDbm = -94;
// Keeps the noise of channel N apart from the draws of access point N.
constexpr std::uint64_t channelKeyBase = 1ULL << 40;

std::int64_t floorDiv(std::int64_t value, std::int64_t divisor)
{
    const std::int64_t quotient = value / divisor;
    return (value % divisor != 0 && (value < 0) != (divisor < 0)) ? quotient - 1 : quotient;
}

std::int64_t secondOf(const QDateTime& at) { return at.toSecsSinceEpoch(); }

double signedUnit(std::uint64_t bits) { return unitOf(bits) * 2.0 - 1.0; }

} // namespace

RadioEnvironment::RadioEnvironment(std::uint64_t seed, int accessPointCount)
    : seed_(seed), population_(seed, accessPointCount)
{
    const auto& aps = population_.accessPoints();
    securityCodes_.reserve(aps.size());
    beacons_.reserve(aps.size());
    for (const SimulatedAccessPoint& ap : aps) {
        scan::RawBssFacts facts;
        facts.capabilityInfo = ap.capabilityInfo;
        facts.informationElements = ap.beaconElements;
        securityCodes_.push_back(scan::deriveScanResult(facts).securityMode);
        beacons_.push_back(ap.beaconElements);
    }
    beaconLoadSteps_.assign(aps.size(), std::numeric_limits<std::int64_t>::min());
}

// Value noise in [-1, 1]: random knots every knotSeconds, eased in between so the value
// glides rather than jumps.
double RadioEnvironment::smoothNoise(std::uint64_t key, std::uint64_t stream, std::int64_t second, int knotSeconds) const
{
    const std::int64_t knot = floorDiv(second, knotSeconds);
    const double t = static_cast<double>(second - knot * knotSeconds) / knotSeconds;
    const double eased = t * t * (3.0 - 2.0 * t);
    const double from = signedUnit(hashOf(seed_, key, stream, static_cast<std::uint64_t>(knot)));
    const double to = signedUnit(hashOf(seed_, key, stream, static_cast<std::uint64_t>(knot + 1)));
    return from + (to - from) * eased;
}

bool RadioEnvironment::isPresent(std::size_t index, const QDateTime& at) const
{
    if (!accessPoints()[index].transient)
        return true;
    // Each hotspot keeps its own schedule, so they do not all switch at the same instant.
    const auto phase = static_cast<std::int64_t>(hashOf(seed_, index, StreamPhase, 0) % presencePeriodSeconds);
    const std::int64_t window = floorDiv(secondOf(at) + phase, presencePeriodSeconds);
    return unitOf(hashOf(seed_, index, StreamPresence, static_cast<std::uint64_t>(window))) < presenceShare;
}

bool RadioEnvironment::isAudible(std::size_t index, const QDateTime& at) const
{
    return isPresent(index, at) && signalDbm(index, at) >= sensitivityDbm;
}

int RadioEnvironment::signalDbm(std::size_t index, const QDateTime& at) const
{
    const std::int64_t second = secondOf(at);
    const auto step = static_cast<std::uint64_t>(second);
    double signal = accessPoints()[index].baseSignalDbm + 6.0 * smoothNoise(index, StreamDrift, second, 60) +
                    2.5 * signedUnit(hashOf(seed_, index, StreamFade, step));
    if (unitOf(hashOf(seed_, index, StreamDeepFade, step)) < 0.03)
        signal -= 12.0;
    return std::clamp(static_cast<int>(std::lround(signal)), -100, -20);
}

int RadioEnvironment::noiseDbm(int channel, const QDateTime& at) const
{
    const std::int64_t second = secondOf(at);
    const std::uint64_t key = channelKeyBase + static_cast<std::uint64_t>(channel);
    const double noise = -95.0 + 2.0 * smoothNoise(key, StreamNoise, second, 45) +
                         signedUnit(hashOf(seed_, key, StreamNoiseStep, static_cast<std::uint64_t>(second)));
    return static_cast<int>(std::lround(noise));
}

BssLoad RadioEnvironment::load(std::size_t index, const QDateTime& at) const
{
    const SimulatedAccessPoint& ap = accessPoints()[index];
    const std::int64_t step = floorDiv(secondOf(at), loadStepSeconds);
    const std::int64_t second = step * loadStepSeconds;
    BssLoad result;
    result.stationCount = std::clamp(
        static_cast<int>(std::lround(ap.baseStationCount + 8.0 * smoothNoise(index, StreamStations, second, 120))), 0,
        255);
    result.utilization255 = std::clamp(
        static_cast<int>(std::lround(ap.baseUtilization255 + 50.0 * smoothNoise(index, StreamUtilization, second, 90))),
        0, 255);
    return result;
}

LinkStatistics RadioEnvironment::linkStatistics(std::size_t index, const QDateTime& at) const
{
    const SimulatedAccessPoint& ap = accessPoints()[index];
    const std::uint64_t jitter = hashOf(seed_, index, StreamRate, static_cast<std::uint64_t>(secondOf(at)));
    return linkStatisticsFor(ap, signalDbm(index, at), noiseDbm(ap.channel, at), jitter);
}

int RadioEnvironment::transmitPowerMw(const QDateTime& at) const
{
    const double dbm = 17.5 + 2.5 * smoothNoise(0, StreamPower, secondOf(at), 20);
    return static_cast<int>(std::lround(std::pow(10.0, dbm / 10.0)));
}

std::optional<std::size_t> RadioEnvironment::indexOfBssid(const QString& bssid) const
{
    const QString wanted = scan::ScannerUtils::normalizeMAC(bssid);
    const auto& aps = accessPoints();
    for (std::size_t i = 0; i < aps.size(); ++i) {
        if (aps[i].bssid.compare(wanted, Qt::CaseInsensitive) == 0)
            return i;
    }
    return std::nullopt;
}

std::optional<std::size_t> RadioEnvironment::strongestWithSsid(const QByteArray& ssid, const QDateTime& at) const
{
    std::optional<std::size_t> best;
    int bestSignal = std::numeric_limits<int>::min();
    for (std::size_t i = 0; i < accessPoints().size(); ++i) {
        if (accessPoints()[i].ssid != ssid || !isAudible(i, at))
            continue;
        const int signal = signalDbm(i, at);
        if (signal > bestSignal) {
            best = i;
            bestSignal = signal;
        }
    }
    return best;
}

const QByteArray& RadioEnvironment::currentBeacon(std::size_t index, std::int64_t second)
{
    const SimulatedAccessPoint& ap = accessPoints()[index];
    if (ap.bssLoadOffset < 0)
        return beacons_[index];
    const std::int64_t step = floorDiv(second, loadStepSeconds);
    if (beaconLoadSteps_[index] != step) {
        const BssLoad now = load(index, QDateTime::fromSecsSinceEpoch(step * loadStepSeconds));
        ElementBuilder::patchBssLoad(beacons_[index], ap.bssLoadOffset, now.stationCount, now.utilization255);
        beaconLoadSteps_[index] = step;
    }
    return beacons_[index];
}

ScanResult RadioEnvironment::heard(std::size_t index, const QDateTime& at, bool revealName)
{
    const SimulatedAccessPoint& ap = accessPoints()[index];
    scan::RawBssFacts facts;
    facts.bssid = ap.bssid;
    facts.frequencyMhz = ap.frequencyMhz;
    facts.signalDbm = signalDbm(index, at);
    facts.noiseDbm = noiseDbm(ap.channel, at);
    facts.capabilityInfo = ap.capabilityInfo;
    facts.beaconInterval = ap.beaconInterval;
    facts.informationElements = currentBeacon(index, secondOf(at));
    if (revealName && ap.hidden != HiddenStyle::Visible) {
        qsizetype loadOffset = -1;
        facts.informationElements = elementsFor(ap, ap.ssid, &loadOffset);
        const BssLoad now = load(index, at);
        ElementBuilder::patchBssLoad(facts.informationElements, loadOffset, now.stationCount, now.utilization255);
    }
    return scan::deriveScanResult(facts);
}

QList<ScanResult> RadioEnvironment::scanAll(const QDateTime& at)
{
    QList<ScanResult> results;
    results.reserve(static_cast<qsizetype>(accessPoints().size()));
    for (std::size_t i = 0; i < accessPoints().size(); ++i) {
        if (isAudible(i, at))
            results.append(heard(i, at, false));
    }
    return results;
}

QList<ScanResult> RadioEnvironment::scanForSsid(const QDateTime& at, const QByteArray& ssid)
{
    if (ssid.isEmpty())
        return scanAll(at);
    QList<ScanResult> results;
    for (std::size_t i = 0; i < accessPoints().size(); ++i) {
        if (accessPoints()[i].ssid == ssid && isAudible(i, at))
            results.append(heard(i, at, true));
    }
    return results;
}

QList<ScanResult> RadioEnvironment::scanForBssid(const QDateTime& at, const QString& bssid)
{
    const std::optional<std::size_t> index = indexOfBssid(bssid);
    if (!index || !isAudible(*index, at))
        return {};
    return {heard(*index, at, false)};
}

} // namespace platform::sim
