#include "platform/linux/linux_wireless_interface.h"

#include "platform/linux/scan_completion.h"
#include "scan/scan_result_derivation.h"

#include <QSocketNotifier>

#include <linux/nl80211.h>
#include <net/if.h>

#include <cerrno>
#include <map>

namespace platform {
namespace {

PlatformError networkManagerMissing(const QString& action)
{
    PlatformError error;
    error.domain = QStringLiteral("NetworkManager");
    error.code = ENOTCONN;
    error.description = QStringLiteral("NetworkManager is not running, so Skyvane cannot %1.").arg(action);
    error.recoverySuggestion = QStringLiteral("Start NetworkManager and try again.");
    return error;
}

int modeForIftype(std::uint32_t iftype)
{
    switch (iftype) {
    case NL80211_IFTYPE_STATION:
    case NL80211_IFTYPE_P2P_CLIENT: return InterfaceModeStation;
    case NL80211_IFTYPE_ADHOC: return InterfaceModeIBSS;
    case NL80211_IFTYPE_AP:
    case NL80211_IFTYPE_P2P_GO: return InterfaceModeHostAP;
    default: return InterfaceModeNone;
    }
}

// BSSIDs arrive in several spellings ("0:1b:2c:..." from some tools); compare the octets.
QByteArray bssidOctets(const QString& bssid)
{
    QByteArray octets;
    for (const QString& part : bssid.split(QLatin1Char(':'))) {
        bool ok = false;
        const uint value = part.toUInt(&ok, 16);
        if (!ok || value > 0xFF)
            return {};
        octets.append(static_cast<char>(value));
    }
    return octets.size() == 6 ? octets : QByteArray();
}

bool isOwnBss(const platform::nl80211::ScanEntry& entry)
{
    return entry.status == NL80211_BSS_STATUS_ASSOCIATED || entry.status == NL80211_BSS_STATUS_IBSS_JOINED;
}

} // namespace

LinuxWirelessInterface::LinuxWirelessInterface(QString name, std::shared_ptr<NetworkManagerClient> networkManager,
                                               QObject* parent)
    : WirelessInterface(core::InterfaceGeneration::Later, parent), name_(std::move(name)), networkManager_(std::move(networkManager))
{
    rfkill_ = new platform::rfkill::RfkillMonitor(platform::rfkill::RfkillMonitor::openDevice(), this);
    connect(rfkill_, &platform::rfkill::RfkillMonitor::wlanPowerChanged, this, &WirelessInterface::powerDidChange);
    if (networkManager_) {
        connect(networkManager_.get(), &NetworkManagerClient::wirelessEnabledChanged, this,
                &WirelessInterface::powerDidChange);
    }
    configEvents_ = std::make_unique<platform::nl80211::EventSocket>(QStringList{QStringLiteral("config")});
    if (!configEvents_->openError()) {
        configNotifier_ = new QSocketNotifier(static_cast<qintptr>(configEvents_->fileDescriptor()),
                                              QSocketNotifier::Read, this);
        connect(configNotifier_, &QSocketNotifier::activated, this, &LinuxWirelessInterface::readConfigEvents);
    }
}

LinuxWirelessInterface::~LinuxWirelessInterface()
{
    // The notifier watches the event socket's descriptor and must go before the socket closes it.
    delete configNotifier_;
}

void LinuxWirelessInterface::readConfigEvents()
{
    QList<platform::nl80211::Event> events;
    const bool complete = configEvents_->drain(events);
    const int index = ifindex();
    bool modeChanged = !complete;
    for (const auto& event : events) {
        const bool modeEvent = event.command == NL80211_CMD_SET_INTERFACE || event.command == NL80211_CMD_NEW_INTERFACE;
        modeChanged = modeChanged || (modeEvent && event.ifindex == index);
    }
    if (modeChanged)
        emit modeDidChange();
}

int LinuxWirelessInterface::ifindex() const
{
    // Looked up every time: NetworkManager or a driver reload may recreate the device.
    return static_cast<int>(::if_nametoindex(name_.toLocal8Bit().constData()));
}

bool LinuxWirelessInterface::networkManagerAvailable() const
{
    return networkManager_ && networkManager_->isAvailable();
}

NmResult<QString> LinuxWirelessInterface::devicePath() const
{
    if (!networkManagerAvailable())
        return {QString(), networkManagerMissing(QStringLiteral("control %1").arg(name_))};
    return networkManager_->devicePathForInterface(name_);
}

bool LinuxWirelessInterface::powerOn(const QString& wiphyName) const
{
    if (const auto index = platform::rfkill::indexForWiphy(wiphyName)) {
        if (const auto on = rfkill_->wlanPowerOn(*index))
            return *on;
    }
    if (const auto on = rfkill_->wlanPowerOn())
        return *on;
    if (networkManagerAvailable()) {
        const auto enabled = networkManager_->wirelessEnabled();
        if (enabled.ok())
            return enabled.value;
    }
    // Nothing reports a switch, and a device that exists with no switch is a radio that is on.
    return true;
}

InterfaceSnapshot LinuxWirelessInterface::snapshot() const
{
    InterfaceSnapshot snapshot;
    snapshot.interfaceName = name_;
    const int index = ifindex();
    platform::nl80211::RequestSocket socket;
    if (index == 0 || socket.openError())
        return snapshot;

    std::optional<platform::nl80211::InterfaceInfo> info;
    for (const auto& candidate : socket.interfaces()) {
        if (candidate.ifindex == index)
            info = candidate;
    }
    if (!info)
        return snapshot;
    platform::nl80211::WiphyInfo wiphy;
    for (const auto& candidate : socket.wiphys()) {
        if (info->wiphy && candidate.index == *info->wiphy)
            wiphy = candidate;
    }
    snapshot.supportedWLANChannels = wiphy.channels;
    snapshot.supportedPHYModes = wiphy.phyModes;
    snapshot.interfaceMode = modeForIftype(info->iftype);
    snapshot.powerOn = powerOn(wiphy.name);
    auto& sources = snapshot.sources;
    sources.insert(QStringLiteral("supportedWLANChannels"), QStringLiteral("nl80211 wiphy %1: enabled channels").arg(wiphy.name));
    sources.insert(QStringLiteral("supportedPHYModes"), QStringLiteral("nl80211 wiphy %1: band capabilities").arg(wiphy.name));
    sources.insert(QStringLiteral("interfaceMode"), QStringLiteral("nl80211 interface type"));
    sources.insert(QStringLiteral("powerOn"), QStringLiteral("rfkill soft/hard block, else NetworkManager WirelessEnabled"));
    if (info->wiphy) {
        const auto regulatory = socket.regulatory(*info->wiphy);
        // "00" is the kernel's world domain: no country has been set.
        if (regulatory && regulatory->alpha2 != QStringLiteral("00"))
            snapshot.countryCode = regulatory->alpha2;
        sources.insert(QStringLiteral("countryCode"), QStringLiteral("nl80211 regulatory domain of the wiphy"));
    }
    if (!snapshot.powerOn)
        return snapshot;

    snapshot.wlanChannel = platform::nl80211::channelOf(*info);
    if (info->txPowerMbm)
        snapshot.transmitPower = platform::nl80211::milliwattsFromMbm(*info->txPowerMbm);
    snapshot.ssidData = info->ssid;
    snapshot.ssid = scan::ssidText(info->ssid);
    sources.insert(QStringLiteral("wlanChannel"), QStringLiteral("nl80211 interface: frequency and channel width"));
    sources.insert(QStringLiteral("transmitPower"), QStringLiteral("nl80211 interface: tx power level"));
    sources.insert(QStringLiteral("ssid"), QStringLiteral("nl80211 interface SSID"));

    std::optional<ScanResult> accessPoint;
    for (const auto& entry : socket.scanDump(index, nullptr)) {
        if (isOwnBss(entry))
            accessPoint = scan::deriveScanResult(entry.facts);
    }
    if (!accessPoint)
        return snapshot;
    snapshot.interfaceState = InterfaceStateRunning;
    snapshot.bssid = accessPoint->bssid;
    sources.insert(QStringLiteral("interfaceState"), QStringLiteral("nl80211 scan dump: a BSS marked associated"));
    sources.insert(QStringLiteral("bssid"), QStringLiteral("nl80211 scan dump: the associated BSS"));
    if (snapshot.ssidData.isEmpty()) {
        snapshot.ssidData = accessPoint->ssidData;
        snapshot.ssid = accessPoint->ssid;
        sources.insert(QStringLiteral("ssid"), QStringLiteral("beacon of the associated BSS"));
    }
    sources.insert(QStringLiteral("security"), QStringLiteral("RSN/WPA elements of the associated BSS's beacon"));
    sources.insert(QStringLiteral("activePHYMode"), QStringLiteral("beacon elements and wiphy capabilities"));
    sources.insert(QStringLiteral("rssiValue"), QStringLiteral("nl80211 scan dump: BSS signal"));
    snapshot.security = accessPoint->securityMode;
    snapshot.activePHYMode = platform::nl80211::activePhyMode(wiphy, *accessPoint);
    snapshot.rssiValue = accessPoint->rssiValue;

    if (const auto station = socket.station(index, accessPoint->bssid)) {
        if (station->signalDbm) {
            snapshot.rssiValue = *station->signalDbm;
            sources.insert(QStringLiteral("rssiValue"), QStringLiteral("nl80211 station info: signal"));
        }
        if (const auto& rate = station->txRate) {
            for (const char* key : {"transmitRate", "mcsIndex", "spatialStreams", "shortGuardInterval", "channelWidthMhz"})
                sources.insert(QLatin1String(key), QStringLiteral("nl80211 station info: tx bitrate"));
            snapshot.transmitRate = rate->bitrate100Kbps.value_or(0) / 10.0;
            snapshot.mcsIndex = rate->mcs;
            snapshot.spatialStreams = rate->spatialStreams;
            snapshot.shortGuardInterval = rate->shortGuardInterval;
            snapshot.channelWidthMhz = rate->widthMhz;
        }
    }
    for (const auto& entry : socket.survey(index)) {
        if (entry.inUse && entry.noiseDbm) {
            snapshot.noiseMeasurement = *entry.noiseDbm;
            sources.insert(QStringLiteral("noiseMeasurement"), QStringLiteral("nl80211 survey of the channel in use"));
        }
    }
    return snapshot;
}

QList<ScanResult> LinuxWirelessInterface::collectResults(platform::nl80211::RequestSocket& socket, int index,
                                                         MaybeError* error) const
{
    const QList<platform::nl80211::ScanEntry> entries = socket.scanDump(index, error);
    // Scan results carry no noise; drivers that measure it leave it in the channel survey.
    std::map<int, int> noiseByFrequency;
    for (const auto& entry : socket.survey(index)) {
        if (entry.noiseDbm)
            noiseByFrequency[entry.frequencyMhz] = *entry.noiseDbm;
    }
    QList<ScanResult> results;
    for (auto entry : entries) {
        if (entry.facts.frequencyMhz) {
            const auto noise = noiseByFrequency.find(*entry.facts.frequencyMhz);
            if (noise != noiseByFrequency.end())
                entry.facts.noiseDbm = noise->second;
        }
        results.append(scan::deriveScanResult(entry.facts));
    }
    return platform::nl80211::mergeHiddenDuplicates(results);
}

QList<ScanResult> LinuxWirelessInterface::cachedScanResults() const
{
    const int index = ifindex();
    platform::nl80211::RequestSocket socket;
    if (index == 0 || socket.openError())
        return {};
    return collectResults(socket, index, nullptr);
}

void LinuxWirelessInterface::waitForKernelScan(int index, const QList<QByteArray>& probes) const
{
    // Listening starts before the trigger, or a quick scan could end unseen.
    platform::nl80211::EventSocket events(QStringList{QStringLiteral("scan")});
    if (events.openError())
        return;
    platform::nl80211::RequestSocket socket;
    const MaybeError refused = socket.triggerScan(index, probes);
    // Busy: a scan someone else started is running; its results serve just as well. Any other
    // refusal (no CAP_NET_ADMIN, interface down) leaves the cached results.
    if (refused && refused->code != EBUSY)
        return;
    platform::nl80211::ScanCompletion completion(index, !refused);
    const auto deadline = std::chrono::steady_clock::now() + scanTimeout;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline
                                                                                - std::chrono::steady_clock::now());
        if (left.count() <= 0 || !events.waitReadable(left))
            return;
        QList<platform::nl80211::Event> received;
        if (!events.drain(received))
            return;
        for (const auto& event : received) {
            if (completion.observe(event))
                return;
        }
    }
}

ScanOutcome LinuxWirelessInterface::freshScan(const QList<QByteArray>& probes)
{
    const int index = ifindex();
    if (index == 0)
        return {{}, platform::nl80211::errorFromErrno(ENODEV, QStringLiteral("Cannot scan on %1").arg(name_))};
    // A device NetworkManager does not manage is scanned like one on a system without it.
    const bool managerRuns = networkManagerAvailable();
    const auto device = managerRuns ? networkManager_->devicePathForInterface(name_)
                                    : NmResult<QString>{QString(), std::nullopt};
    if (managerRuns && device.ok()) {
        const auto before = networkManager_->lastScanMs(device.value);
        if (auto refused = networkManager_->requestScan(device.value, probes))
            return {{}, refused};
        networkManager_->waitForScanCompletion(device.value, before.ok() ? before.value : -1,
                                               static_cast<int>(scanTimeout.count()));
    } else {
        waitForKernelScan(index, probes);
    }
    platform::nl80211::RequestSocket socket;
    ScanOutcome outcome;
    outcome.networks = collectResults(socket, index, &outcome.error);
    return outcome;
}

ScanOutcome LinuxWirelessInterface::scanForNetworksWithSSID(const QByteArray& ssid)
{
    if (ssid.isEmpty())
        return freshScan({});
    ScanOutcome outcome = freshScan({ssid});
    outcome.networks.removeIf([&ssid](const ScanResult& network) { return network.ssidData != ssid; });
    return outcome;
}

ScanOutcome LinuxWirelessInterface::scanForNetworksWithBSSID(const QString& bssid)
{
    const QByteArray wanted = bssidOctets(bssid);
    ScanOutcome outcome = freshScan({});
    outcome.networks.removeIf([&wanted](const ScanResult& network) {
        return wanted.isEmpty() || bssidOctets(network.bssid) != wanted;
    });
    return outcome;
}

} // namespace platform
