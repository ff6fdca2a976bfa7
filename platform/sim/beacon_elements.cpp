#include "platform/sim/beacon_elements.h"

#include "core/units.h"
#include "platform/sim/element_builder.h"

namespace platform::sim {

namespace {

constexpr std::uint16_t capabilityEss = 0x0001;
constexpr std::uint16_t capabilityIbss = 0x0002;
constexpr std::uint16_t capabilityPrivacy = 0x0010;
constexpr std::uint16_t capabilityShortPreamble = 0x0020;
constexpr std::uint16_t capabilitySpectrumManagement = 0x0100;
constexpr std::uint16_t capabilityShortSlot = 0x0400;

bool isDfsChannel(int channel) { return channel >= 52 && channel <= 144; }

// The lowest channel of the 40, 80 or 160 MHz block a 5 GHz primary channel sits in.
int blockStart(int channel, int widthMhz)
{
    const int span = widthMhz / 5;  // channel numbers per block
    if (channel >= 149)
        return 149 + ((channel - 149) / span) * span;
    return 36 + ((channel - 36) / span) * span;
}

SecondaryChannel secondaryFor(const SimulatedAccessPoint& ap)
{
    if (ap.widthMhz < 40)
        return SecondaryChannel::None;
    if (core::is24GhzChannel(ap.channel))
        return ap.channel <= 7 ? SecondaryChannel::Above : SecondaryChannel::Below;
    return blockStart(ap.channel, 40) == ap.channel ? SecondaryChannel::Above : SecondaryChannel::Below;
}

void addSecurity(ElementBuilder& builder, const SimulatedAccessPoint& ap)
{
    const bool ft = ap.fastRoaming;
    switch (ap.security) {
    case SecurityKind::Open:
    case SecurityKind::Wep:
    case SecurityKind::Wpa:  // WPA rides in a vendor element, written with the others
        break;
    case SecurityKind::WpaWpa2Mixed:
        builder.rsn(CipherSuite::Tkip, {CipherSuite::Ccmp, CipherSuite::Tkip}, {AkmSuite::Psk}, 0x000C);
        break;
    case SecurityKind::Wpa2:
        builder.rsn(CipherSuite::Ccmp, {CipherSuite::Ccmp},
                    ft ? QList<AkmSuite>{AkmSuite::Psk, AkmSuite::FtPsk} : QList<AkmSuite>{AkmSuite::Psk}, 0x000C);
        break;
    case SecurityKind::Wpa3:
        // Protected management frames are mandatory with SAE.
        builder.rsn(CipherSuite::Ccmp, {CipherSuite::Ccmp},
                    ft ? QList<AkmSuite>{AkmSuite::Sae, AkmSuite::FtSae} : QList<AkmSuite>{AkmSuite::Sae}, 0x00CC);
        break;
    case SecurityKind::Wpa2Enterprise:
        builder.rsn(CipherSuite::Ccmp, {CipherSuite::Ccmp},
                    ft ? QList<AkmSuite>{AkmSuite::Ieee8021X, AkmSuite::FtIeee8021X} : QList<AkmSuite>{AkmSuite::Ieee8021X},
                    0x0028);
        break;
    }
}

void addVht(ElementBuilder& builder, const SimulatedAccessPoint& ap)
{
    builder.vhtCapabilities({ap.widthMhz >= 160, ap.shortGi, ap.spatialStreams});
    if (ap.widthMhz == 80) {
        builder.vhtOperation(1, blockStart(ap.channel, 80) + 6, 0);
    } else if (ap.widthMhz == 160) {
        const int start160 = blockStart(ap.channel, 160);
        const int start80 = ap.channel < start160 + 16 ? start160 : start160 + 16;
        builder.vhtOperation(1, start80 + 6, start160 + 14);
    } else {
        builder.vhtOperation(0, 0, 0);
    }
}

} // namespace

QString simulatedPassphrase(const QByteArray& ssid) { return QStringLiteral("skyvane-") + QString::fromUtf8(ssid); }

std::uint16_t capabilityInfoFor(const SimulatedAccessPoint& ap)
{
    std::uint16_t info = ap.ibss ? capabilityIbss : capabilityEss;
    if (ap.security != SecurityKind::Open)
        info |= capabilityPrivacy;
    if (core::is24GhzChannel(ap.channel))
        info |= capabilityShortPreamble | capabilityShortSlot;
    else if (isDfsChannel(ap.channel))
        info |= capabilitySpectrumManagement;
    return info;
}

QByteArray elementsFor(const SimulatedAccessPoint& ap, const QByteArray& ssidField, qsizetype* loadOffset)
{
    const bool band24 = core::is24GhzChannel(ap.channel);
    ElementBuilder builder;
    builder.ssid(ssidField);
    if (band24) {
        builder.supportedRates({0x82, 0x84, 0x8B, 0x96, 0x0C, 0x12, 0x18, 0x24});
        builder.dsParameterSet(ap.channel);
    } else {
        builder.supportedRates({0x8C, 0x12, 0x98, 0x24, 0xB0, 0x48, 0x60, 0x6C});
    }
    if (ap.announcesCountry) {
        if (band24)
            builder.country(simulatedCountryCode, {{1, 13, 20}});
        else
            builder.country(simulatedCountryCode, {{36, 4, 23}, {52, 4, 23}, {100, 11, 30}});
    }
    if (ap.announcesLoad)
        builder.bssLoad(ap.baseStationCount, ap.baseUtilization255, 0);
    if (!ap.legacyOnly)
        builder.htCapabilities({ap.widthMhz >= 40, ap.shortGi, ap.shortGi && ap.widthMhz >= 40, ap.spatialStreams});
    addSecurity(builder, ap);
    if (band24)
        builder.extendedRates({0x30, 0x48, 0x60, 0x6C});
    if (ap.fastRoaming)
        builder.mobilityDomain(ap.mobilityDomainId, true);
    if (!ap.legacyOnly)
        builder.htOperation(ap.channel, secondaryFor(ap));
    if (ap.vhtCapable)
        addVht(builder, ap);
    if (ap.apNameKind == ApNameKind::DeviceNameElement)
        builder.deviceName(ap.apName, ap.baseStationCount);
    if (ap.security == SecurityKind::Wpa || ap.security == SecurityKind::WpaWpa2Mixed)
        builder.wpa(CipherSuite::Tkip, {CipherSuite::Tkip}, {AkmSuite::Psk});
    if (ap.wps)
        builder.wps(true);
    if (ap.apNameKind == ApNameKind::VendorElement)
        builder.vendorApName(ap.apName);
    if (loadOffset)
        *loadOffset = builder.bssLoadOffset();
    return builder.bytes();
}

void buildBeacon(SimulatedAccessPoint& ap)
{
    ap.capabilityInfo = capabilityInfoFor(ap);
    QByteArray ssidField;
    if (ap.hidden == HiddenStyle::ZeroFilled)
        ssidField = QByteArray(ap.ssid.size(), '\0');
    else if (ap.hidden == HiddenStyle::Visible)
        ssidField = ap.ssid;
    ap.beaconElements = elementsFor(ap, ssidField, &ap.bssLoadOffset);
}

} // namespace platform::sim
