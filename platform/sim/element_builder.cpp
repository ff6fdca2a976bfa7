#include "platform/sim/element_builder.h"

#include <algorithm>

namespace platform::sim {

namespace {

constexpr std::uint8_t idSsid = 0;
constexpr std::uint8_t idSupportedRates = 1;
constexpr std::uint8_t idDsParameterSet = 3;
constexpr std::uint8_t idCountry = 7;
constexpr std::uint8_t idBssLoad = 11;
constexpr std::uint8_t idHtCapabilities = 45;
constexpr std::uint8_t idRsn = 48;
constexpr std::uint8_t idExtendedRates = 50;
constexpr std::uint8_t idMobilityDomain = 54;
constexpr std::uint8_t idHtOperation = 61;
constexpr std::uint8_t idDeviceName = 133;
constexpr std::uint8_t idVhtCapabilities = 191;
constexpr std::uint8_t idVhtOperation = 192;
constexpr std::uint8_t idVendorSpecific = 221;
constexpr qsizetype maxElementBody = 255;

void putByte(QByteArray& out, int value) { out.append(static_cast<char>(value & 0xFF)); }

void putLe16(QByteArray& out, int value)
{
    putByte(out, value);
    putByte(out, value >> 8);
}

void putBe16(QByteArray& out, int value)
{
    putByte(out, value >> 8);
    putByte(out, value);
}

void putSuite(QByteArray& out, const char (&oui)[4], std::uint8_t type)
{
    out.append(oui, 3);
    putByte(out, type);
}

constexpr char ieeeOui[4] = "\x00\x0F\xAC";
constexpr char microsoftOui[4] = "\x00\x50\xF2";
constexpr char arubaOui[4] = "\x00\x0B\x86";

void putSuiteLists(QByteArray& out, const char (&oui)[4], CipherSuite group, const QList<CipherSuite>& pairwise,
                   const QList<AkmSuite>& akms)
{
    putSuite(out, oui, static_cast<std::uint8_t>(group));
    putLe16(out, static_cast<int>(pairwise.size()));
    for (const CipherSuite suite : pairwise)
        putSuite(out, oui, static_cast<std::uint8_t>(suite));
    putLe16(out, static_cast<int>(akms.size()));
    for (const AkmSuite suite : akms)
        putSuite(out, oui, static_cast<std::uint8_t>(suite));
}

// The MCS map of both directions: MCS 0-9 on each stream the radio has, "not supported" beyond.
int vhtMcsMap(int spatialStreams)
{
    int map = 0;
    for (int stream = 0; stream < 8; ++stream)
        map |= (stream < spatialStreams ? 2 : 3) << (2 * stream);
    return map;
}

} // namespace

ElementBuilder& ElementBuilder::element(std::uint8_t id, const QByteArray& body)
{
    const QByteArray clipped = body.left(maxElementBody);
    putByte(bytes_, id);
    putByte(bytes_, static_cast<int>(clipped.size()));
    bytes_.append(clipped);
    return *this;
}

ElementBuilder& ElementBuilder::raw(std::uint8_t id, const QByteArray& body) { return element(id, body); }

ElementBuilder& ElementBuilder::ssid(const QByteArray& ssid) { return element(idSsid, ssid.left(32)); }

ElementBuilder& ElementBuilder::supportedRates(const QList<std::uint8_t>& rates)
{
    QByteArray body;
    for (const std::uint8_t rate : rates)
        putByte(body, rate);
    return element(idSupportedRates, body);
}

ElementBuilder& ElementBuilder::extendedRates(const QList<std::uint8_t>& rates)
{
    QByteArray body;
    for (const std::uint8_t rate : rates)
        putByte(body, rate);
    return element(idExtendedRates, body);
}

ElementBuilder& ElementBuilder::dsParameterSet(int channel)
{
    QByteArray body;
    putByte(body, channel);
    return element(idDsParameterSet, body);
}

ElementBuilder& ElementBuilder::country(const QByteArray& code, const QList<CountryTriplet>& triplets)
{
    QByteArray body = code.left(2).leftJustified(2, ' ');
    // The third byte says the limits hold indoors and outdoors alike.
    body.append(' ');
    for (const CountryTriplet& triplet : triplets) {
        putByte(body, triplet.firstChannel);
        putByte(body, triplet.channelCount);
        putByte(body, triplet.maxPowerDbm);
    }
    if (body.size() % 2 != 0)
        putByte(body, 0);
    return element(idCountry, body);
}

ElementBuilder& ElementBuilder::bssLoad(int stationCount, int utilization255, int admissionCapacity)
{
    QByteArray body;
    putLe16(body, stationCount);
    putByte(body, utilization255);
    putLe16(body, admissionCapacity);
    bssLoadOffset_ = bytes_.size() + 2;
    return element(idBssLoad, body);
}

void ElementBuilder::patchBssLoad(QByteArray& elements, qsizetype offset, int stationCount, int utilization255)
{
    if (offset < 0 || offset + 3 > elements.size())
        return;
    elements[offset] = static_cast<char>(stationCount & 0xFF);
    elements[offset + 1] = static_cast<char>((stationCount >> 8) & 0xFF);
    elements[offset + 2] = static_cast<char>(utilization255 & 0xFF);
}

ElementBuilder& ElementBuilder::htCapabilities(const HtCapabilities& caps)
{
    // LDPC and greenfield off; the bits a scanner looks at are width and short guard intervals.
    int info = 0x000C;  // SM power save disabled
    if (caps.fortyMhz)
        info |= 0x0002;
    if (caps.shortGi20)
        info |= 0x0020;
    if (caps.shortGi40)
        info |= 0x0040;
    QByteArray body;
    putLe16(body, info);
    putByte(body, 0x17);  // A-MPDU: 64 KiB, 8 us spacing
    const int streams = std::clamp(caps.spatialStreams, 1, 4);
    for (int i = 0; i < 16; ++i)
        putByte(body, i < streams ? 0xFF : 0x00);
    putLe16(body, 0);
    body.append(QByteArray(5, '\0'));
    return element(idHtCapabilities, body);
}

ElementBuilder& ElementBuilder::htOperation(int primaryChannel, SecondaryChannel secondary)
{
    QByteArray body;
    putByte(body, primaryChannel);
    int info = static_cast<int>(secondary);
    if (secondary != SecondaryChannel::None)
        info |= 0x04;  // any channel width allowed
    putByte(body, info);
    body.append(QByteArray(20, '\0'));
    return element(idHtOperation, body);
}

ElementBuilder& ElementBuilder::vhtCapabilities(const VhtCapabilities& caps)
{
    std::uint32_t info = 0x00000002;  // maximum MPDU 11454 octets
    if (caps.supports160)
        info |= 0x04u | 0x40u;  // 160 MHz, short GI at 160
    if (caps.shortGi80)
        info |= 0x20u;
    QByteArray body;
    putLe16(body, static_cast<int>(info & 0xFFFF));
    putLe16(body, static_cast<int>(info >> 16));
    const int map = vhtMcsMap(std::clamp(caps.spatialStreams, 1, 8));
    putLe16(body, map);
    putLe16(body, 0);
    putLe16(body, map);
    putLe16(body, 0);
    return element(idVhtCapabilities, body);
}

ElementBuilder& ElementBuilder::vhtOperation(int channelWidthField, int segment0, int segment1)
{
    QByteArray body;
    putByte(body, channelWidthField);
    putByte(body, segment0);
    putByte(body, segment1);
    putLe16(body, 0xFFFC);  // basic VHT-MCS 0-7 on one stream
    return element(idVhtOperation, body);
}

ElementBuilder& ElementBuilder::rsn(CipherSuite group, const QList<CipherSuite>& pairwise,
                                    const QList<AkmSuite>& akms, std::uint16_t capabilities)
{
    QByteArray body;
    putLe16(body, 1);
    putSuiteLists(body, ieeeOui, group, pairwise, akms);
    putLe16(body, capabilities);
    return element(idRsn, body);
}

ElementBuilder& ElementBuilder::wpa(CipherSuite group, const QList<CipherSuite>& pairwise, const QList<AkmSuite>& akms)
{
    QByteArray body;
    putSuite(body, microsoftOui, 1);
    putLe16(body, 1);
    putSuiteLists(body, microsoftOui, group, pairwise, akms);
    return element(idVendorSpecific, body);
}

ElementBuilder& ElementBuilder::wps(bool configured)
{
    QByteArray body;
    putSuite(body, microsoftOui, 4);
    putBe16(body, 0x104A);  // version 1.0
    putBe16(body, 1);
    putByte(body, 0x10);
    putBe16(body, 0x1044);  // setup state
    putBe16(body, 1);
    putByte(body, configured ? 2 : 1);
    return element(idVendorSpecific, body);
}

ElementBuilder& ElementBuilder::mobilityDomain(std::uint16_t domainId, bool overDs)
{
    QByteArray body;
    putLe16(body, domainId);
    putByte(body, overDs ? 0x01 : 0x00);
    return element(idMobilityDomain, body);
}

ElementBuilder& ElementBuilder::deviceName(const QByteArray& name, int clientCount)
{
    QByteArray body(9, '\0');
    body.append(name.left(16).leftJustified(16, '\0'));
    putByte(body, clientCount);
    body.append(QByteArray(4, '\0'));
    return element(idDeviceName, body);
}

ElementBuilder& ElementBuilder::vendorApName(const QByteArray& name)
{
    QByteArray body;
    putSuite(body, arubaOui, 1);
    putByte(body, 3);
    body.append(name);
    return element(idVendorSpecific, body);
}

} // namespace platform::sim
