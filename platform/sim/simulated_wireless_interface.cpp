#include "platform/sim/simulated_wireless_interface.h"

#include "platform/sim/beacon_elements.h"
#include "platform/sim/sim_random.h"

namespace platform::sim {

namespace {

constexpr int ibssMinimumPassphrase = 8;
constexpr int maximumSsidBytes = 32;

QList<WlanChannel> supportedChannels()
{
    QList<WlanChannel> channels;
    // The regulatory domain is Germany's: channel 14 is not allowed there.
    for (int channel = 1; channel <= 13; ++channel)
        channels.append({channel, ChannelBand::Band2GHz, ChannelWidthCode::Width20MHz});
    for (int channel = 36; channel <= 64; channel += 4)
        channels.append({channel, ChannelBand::Band5GHz, ChannelWidthCode::Width20MHz});
    for (int channel = 100; channel <= 144; channel += 4)
        channels.append({channel, ChannelBand::Band5GHz, ChannelWidthCode::Width20MHz});
    for (int channel = 149; channel <= 165; channel += 4)
        channels.append({channel, ChannelBand::Band5GHz, ChannelWidthCode::Width20MHz});
    return channels;
}

PlatformError simulationError(int code, const QString& description, const QString& reason = {},
                              const QString& suggestion = {})
{
    return PlatformError{QString::fromLatin1(simulationErrorDomain), code, description, reason, suggestion};
}

QString quoted(const QString& name) { return QStringLiteral("\u201C") + name + QStringLiteral("\u201D"); }

// Ad-hoc cells choose a random locally administered BSSID; deriving it from the name keeps the
// simulation repeatable.
QString ibssBssid(const QByteArray& ssid)
{
    std::uint64_t bits = 0;
    for (const char byte : ssid)
        bits = mixBits(bits ^ static_cast<std::uint8_t>(byte));
    QString text = QStringLiteral("02");
    for (int i = 0; i < 5; ++i)
        text += QLatin1Char(':') + QString::number((bits >> (8 * i)) & 0xFF, 16).rightJustified(2, QLatin1Char('0'));
    return text;
}

} // namespace

SimulatedWirelessInterface::SimulatedWirelessInterface(QString name, std::unique_ptr<RadioEnvironment> environment,
                                                       std::shared_ptr<const Clock> clock,
                                                       core::InterfaceGeneration generation, QObject* parent)
    : WirelessInterface(generation, parent), name_(std::move(name)), clock_(std::move(clock)), environment_(std::move(environment))
{
    const std::size_t home = environment_->homeIndex();
    const SimulatedAccessPoint& ap = environment_->accessPoints()[home];
    station_ = home;
    autoJoin_ = home;
    remember(ap.ssid, environment_->securityCode(home));
    if (ap.security != SecurityKind::Open)
        passwords_.insert(ap.ssid, simulatedPassphrase(ap.ssid));
}

int SimulatedWirelessInterface::modeLocked() const
{
    if (!powerOn_)
        return InterfaceModeNone;
    if (hostingAccessPoint_)
        return InterfaceModeHostAP;
    return ibss_ ? InterfaceModeIBSS : InterfaceModeStation;
}

bool SimulatedWirelessInterface::leaveSpecialModesLocked()
{
    const bool changed = ibss_.has_value() || hostingAccessPoint_;
    ibss_.reset();
    hostingAccessPoint_ = false;
    return changed;
}

InterfaceSnapshot SimulatedWirelessInterface::snapshot() const
{
    static const QList<WlanChannel> channels = supportedChannels();
    const QDateTime now = clock_->now();
    const std::lock_guard lock(mutex_);
    InterfaceSnapshot s;
    s.interfaceName = name_;
    s.powerOn = powerOn_;
    s.interfaceMode = modeLocked();
    s.countryCode = QString::fromLatin1(simulatedCountryCode);
    s.supportedWLANChannels = channels;
    s.supportedPHYModes = PhyA | PhyB | PhyG | PhyN | PhyAC;
    s.sources.insert(QStringLiteral("*"), QStringLiteral("the simulated radio environment"));
    if (!powerOn_)
        return s;
    s.transmitPower = environment_->transmitPowerMw(now);
    if (ibss_) {
        s.interfaceState = InterfaceStateRunning;
        s.bssid = ibss_->bssid;
        s.ssidData = ibss_->ssid;
        s.ssid = QString::fromUtf8(ibss_->ssid);
        s.security = ibss_->security;
        s.activePHYMode = PhyMode11g;
        s.noiseMeasurement = environment_->noiseDbm(ibss_->channel, now);
        s.transmitRate = 54.0;
        s.wlanChannel = WlanChannel{ibss_->channel, ChannelBand::Band2GHz, ChannelWidthCode::Width20MHz};
        s.channelWidthMhz = 20;
        return s;
    }
    if (station_ && environment_->isAudible(*station_, now))
        fillLink(s, now);
    return s;
}

void SimulatedWirelessInterface::fillLink(InterfaceSnapshot& s, const QDateTime& now) const
{
    const std::size_t index = *station_;
    const SimulatedAccessPoint& ap = environment_->accessPoints()[index];
    const LinkStatistics link = environment_->linkStatistics(index, now);
    s.interfaceState = InterfaceStateRunning;
    s.bssid = ap.bssid;
    s.ssidData = ap.ssid;
    s.ssid = QString::fromUtf8(ap.ssid);
    s.security = environment_->securityCode(index);
    s.activePHYMode = link.phyMode;
    s.rssiValue = environment_->signalDbm(index, now);
    s.noiseMeasurement = environment_->noiseDbm(ap.channel, now);
    s.transmitRate = link.transmitRateMbps;
    s.wlanChannel = WlanChannel{ap.channel, core::bandForChannel(ap.channel),
                                core::widthCodeForMhz(ap.widthMhz)};
    s.mcsIndex = link.mcsIndex;
    s.spatialStreams = link.spatialStreams;
    if (link.mcsIndex)
        s.shortGuardInterval = link.shortGuardInterval;
    s.channelWidthMhz = link.channelWidthMhz;
}

MaybeError SimulatedWirelessInterface::poweredOffError() const
{
    return simulationError(SimulationErrorPoweredOff,
                           QStringLiteral("The Wi-Fi interface %1 is turned off.").arg(quoted(name_)), {},
                           QStringLiteral("Turn Wi-Fi on and try again."));
}

ScanOutcome SimulatedWirelessInterface::scanForNetworksWithSSID(const QByteArray& ssid)
{
    const QDateTime now = clock_->now();
    const std::lock_guard lock(mutex_);
    if (!powerOn_)
        return {{}, poweredOffError()};
    cached_ = environment_->scanForSsid(now, ssid);
    return {cached_, std::nullopt};
}

ScanOutcome SimulatedWirelessInterface::scanForNetworksWithBSSID(const QString& bssid)
{
    const QDateTime now = clock_->now();
    const std::lock_guard lock(mutex_);
    if (!powerOn_)
        return {{}, poweredOffError()};
    cached_ = environment_->scanForBssid(now, bssid);
    return {cached_, std::nullopt};
}

QList<ScanResult> SimulatedWirelessInterface::cachedScanResults() const
{
    const std::lock_guard lock(mutex_);
    return cached_;
}

void SimulatedWirelessInterface::announce(Lock& lock, bool powerChanged, bool modeChanged)
{
    lock.unlock();
    if (powerChanged)
        emit powerDidChange();
    if (modeChanged)
        emit modeDidChange();
}

MaybeError SimulatedWirelessInterface::setPower(bool on)
{
    Lock lock(mutex_);
    if (powerOn_ == on)
        return std::nullopt;
    powerOn_ = on;
    const bool modeChanged = leaveSpecialModesLocked();
    if (on) {
        station_ = autoJoin_;
    } else {
        station_.reset();
        cached_.clear();
    }
    announce(lock, true, modeChanged);
    return std::nullopt;
}

void SimulatedWirelessInterface::disassociate()
{
    Lock lock(mutex_);
    station_.reset();
    autoJoin_.reset();
    announce(lock, false, leaveSpecialModesLocked());
}

MaybeError SimulatedWirelessInterface::associateToNetwork(const ScanResult& network, const QString& password)
{
    return join(network, std::nullopt, password);
}

MaybeError SimulatedWirelessInterface::associateToEnterpriseNetwork(const ScanResult& network, const QString& identity,
                                                                    const QString& username, const QString& password,
                                                                    const EapOptions&)
{
    return join(network, Credentials{identity, username, password}, password);
}

MaybeError SimulatedWirelessInterface::join(const ScanResult& network, const std::optional<Credentials>& enterprise,
                                            const QString& password)
{
    const QDateTime now = clock_->now();
    Lock lock(mutex_);
    if (!powerOn_)
        return poweredOffError();

    std::optional<std::size_t> index = network.bssid.isEmpty() ? environment_->strongestWithSsid(network.ssidData, now)
                                                                : environment_->indexOfBssid(network.bssid);
    const QString name = network.ssid.isEmpty() ? network.bssid : network.ssid;
    // A hidden network is joined by its name; the beacon's empty name is not enough.
    if (index && environment_->accessPoints()[*index].ssid != network.ssidData)
        index.reset();
    if (!index || !environment_->isAudible(*index, now)) {
        return simulationError(SimulationErrorNetworkNotFound,
                               QStringLiteral("The network %1 could not be found.").arg(quoted(name)),
                               QStringLiteral("It is out of range or no longer broadcasting."),
                               QStringLiteral("Scan again and choose a network in range."));
    }

    const SimulatedAccessPoint& ap = environment_->accessPoints()[*index];
    const QString expected = simulatedPassphrase(ap.ssid);
    if (ap.security == SecurityKind::Wpa2Enterprise) {
        if (!enterprise || enterprise->username.isEmpty() || password.isEmpty()) {
            return simulationError(SimulationErrorCredentialsRequired,
                                   QStringLiteral("%1 requires a user name and password.").arg(quoted(name)));
        }
        if (password != expected) {
            return simulationError(SimulationErrorWrongCredentials,
                                   QStringLiteral("The user name or password for %1 is incorrect.").arg(quoted(name)));
        }
    } else if (ap.security != SecurityKind::Open) {
        if (password.isEmpty()) {
            return simulationError(SimulationErrorCredentialsRequired,
                                   QStringLiteral("A passphrase is required to join %1.").arg(quoted(name)));
        }
        if (password != expected) {
            return simulationError(SimulationErrorWrongPassphrase,
                                   QStringLiteral("The passphrase for %1 is incorrect.").arg(quoted(name)));
        }
    }

    const bool modeChanged = leaveSpecialModesLocked();
    station_ = index;
    autoJoin_ = index;
    remember(ap.ssid, environment_->securityCode(*index));
    if (ap.security == SecurityKind::Wpa2Enterprise) {
        enterpriseSecrets_.insert(ap.ssid, *enterprise);
        const QString ssidText = QString::fromUtf8(ap.ssid);
        eapProfiles_.removeIf([&ssidText](const EapProfile& p) { return p.ssid == ssidText; });
        eapProfiles_.append(EapProfile{ssidText, ssidText, enterprise->username, password});
    } else if (ap.security != SecurityKind::Open) {
        passwords_.insert(ap.ssid, password);
    }
    announce(lock, false, modeChanged);
    return std::nullopt;
}

MaybeError SimulatedWirelessInterface::startIBSSModeWithSSID(const QByteArray& ssid, int security, int channel,
                                                             const QString& password)
{
    Lock lock(mutex_);
    if (!powerOn_)
        return poweredOffError();
    if (ssid.isEmpty() || ssid.size() > maximumSsidBytes) {
        return simulationError(SimulationErrorInvalidParameter,
                               QStringLiteral("The name of an ad-hoc network must be 1 to 32 bytes long."));
    }
    if (password.size() < ibssMinimumPassphrase) {
        return simulationError(SimulationErrorInvalidParameter,
                               QStringLiteral("The passphrase of an ad-hoc network must be at least 8 characters."));
    }
    if (channel < 1 || channel > 13) {
        return simulationError(SimulationErrorInvalidParameter,
                               QStringLiteral("Channel %1 cannot be used for an ad-hoc network.").arg(channel),
                               QStringLiteral("Ad-hoc networks use the 2.4 GHz channels 1 to 13."));
    }
    const bool modeChanges = !ibss_.has_value();
    hostingAccessPoint_ = false;
    station_.reset();
    ibss_ = IbssCell{ssid, ibssBssid(ssid), channel, security};
    remember(ssid, security);
    passwords_.insert(ssid, password);
    announce(lock, false, modeChanges);
    return std::nullopt;
}

MaybeError SimulatedWirelessInterface::setHostingAccessPoint(bool on)
{
    Lock lock(mutex_);
    if (!powerOn_)
        return poweredOffError();
    if (hostingAccessPoint_ == on)
        return std::nullopt;
    ibss_.reset();
    hostingAccessPoint_ = on;
    if (on)
        station_.reset();
    else
        station_ = autoJoin_;
    announce(lock, false, true);
    return std::nullopt;
}

void SimulatedWirelessInterface::remember(const QByteArray& ssid, int security)
{
    profiles_.removeIf([&ssid](const NetworkProfile& p) { return p.ssidData == ssid; });
    profiles_.append(NetworkProfile{ssid, QString::fromUtf8(ssid), security});
}

QList<NetworkProfile> SimulatedWirelessInterface::networkProfiles() const
{
    const std::lock_guard lock(mutex_);
    return profiles_;
}

QList<EapProfile> SimulatedWirelessInterface::allUser8021XProfiles() const
{
    const std::lock_guard lock(mutex_);
    return eapProfiles_;
}

std::optional<QString> SimulatedWirelessInterface::copyPassword(const QByteArray& ssid) const
{
    const std::lock_guard lock(mutex_);
    const auto it = passwords_.constFind(ssid);
    return it == passwords_.constEnd() ? std::nullopt : std::optional<QString>(*it);
}

std::optional<EapCredentials> SimulatedWirelessInterface::copyEAPUsernameAndPassword(const QByteArray& ssid) const
{
    const std::lock_guard lock(mutex_);
    const auto it = enterpriseSecrets_.constFind(ssid);
    if (it == enterpriseSecrets_.constEnd())
        return std::nullopt;
    return EapCredentials{it->username, it->password};
}

std::optional<QString> SimulatedWirelessInterface::copyEAPIdentity(const QByteArray& ssid) const
{
    const std::lock_guard lock(mutex_);
    const auto it = enterpriseSecrets_.constFind(ssid);
    if (it == enterpriseSecrets_.constEnd() || it->identity.isEmpty())
        return std::nullopt;
    return it->identity;
}

} // namespace platform::sim
