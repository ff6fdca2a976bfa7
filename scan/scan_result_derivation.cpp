#include "scan/scan_result_derivation.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>

namespace {

using platform::ChannelBand;
using platform::ChannelWidthCode;

constexpr std::uint16_t capabilityIbss = 0x0002;
constexpr std::uint16_t capabilityPrivacy = 0x0010;

enum ElementId : std::uint8_t {
    IdSsid = 0,
    IdSupportedRates = 1,
    IdDsParameterSet = 3,
    IdCountry = 7,
    IdHtCapabilities = 45,
    IdRsn = 48,
    IdExtendedRates = 50,
    IdHtOperation = 61,
    IdVhtCapabilities = 191,
    IdVhtOperation = 192,
    IdVendorSpecific = 221,
};

// Authentication families seen in the AKM lists of the RSN and WPA elements.
enum AkmBit : unsigned {
    AkmEnterprise = 1u << 0,
    AkmSuiteB = 1u << 1,
    AkmPsk = 1u << 2,
    AkmSae = 1u << 3,
};

struct Span {
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;

    bool present() const { return data != nullptr; }
    std::uint8_t at(std::size_t i) const { return data[i]; }
};

// What one walk over the elements collects; first occurrence of each element wins, as for the SSID.
struct ElementFacts {
    Span ssid;
    Span dsParameterSet;
    Span country;
    Span htOperation;
    Span vhtOperation;
    Span rsn;
    Span wpa;
    bool hasHtCapabilities = false;
    bool hasVhtCapabilities = false;
    bool hasCckRate = false;
    bool hasOfdmRate = false;
};

void noteRates(const std::uint8_t* rates, std::size_t count, ElementFacts& facts)
{
    for (std::size_t i = 0; i < count; ++i) {
        switch (rates[i] & 0x7F) {
        case 2: case 4: case 11: case 22:
            facts.hasCckRate = true;
            break;
        case 12: case 18: case 24: case 36: case 48: case 72: case 96: case 108:
            facts.hasOfdmRate = true;
            break;
        default:
            break;
        }
    }
}

bool isWpaVendorElement(const std::uint8_t* body, std::size_t size)
{
    return size >= 4 && body[0] == 0x00 && body[1] == 0x50 && body[2] == 0xF2 && body[3] == 0x01;
}

void keepFirst(Span& slot, const std::uint8_t* body, std::size_t size)
{
    if (!slot.present())
        slot = Span{body, size};
}

// An element whose length runs past the end ends the walk: nothing after it can be trusted.
ElementFacts walkElements(const QByteArray& bytes)
{
    ElementFacts facts;
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.constData());
    const std::size_t total = static_cast<std::size_t>(bytes.size());
    std::size_t pos = 0;
    while (pos + 2 <= total) {
        const std::uint8_t id = data[pos];
        const std::size_t size = data[pos + 1];
        const std::uint8_t* body = data + pos + 2;
        if (size > total - pos - 2)
            break;
        switch (id) {
        case IdSsid: keepFirst(facts.ssid, body, size); break;
        case IdDsParameterSet: keepFirst(facts.dsParameterSet, body, size); break;
        case IdCountry: keepFirst(facts.country, body, size); break;
        case IdHtOperation: keepFirst(facts.htOperation, body, size); break;
        case IdVhtOperation: keepFirst(facts.vhtOperation, body, size); break;
        case IdRsn: keepFirst(facts.rsn, body, size); break;
        case IdHtCapabilities: facts.hasHtCapabilities = true; break;
        case IdVhtCapabilities: facts.hasVhtCapabilities = true; break;
        case IdSupportedRates:
        case IdExtendedRates: noteRates(body, size, facts); break;
        case IdVendorSpecific:
            if (isWpaVendorElement(body, size))
                keepFirst(facts.wpa, body, size);
            break;
        default: break;
        }
        pos += 2 + size;
    }
    return facts;
}

std::uint16_t readLe16(const std::uint8_t* p) { return static_cast<std::uint16_t>(p[0] | (p[1] << 8)); }

// Walks "count, suites" lists from offset; returns the offset after the list, or nullopt when
// the count runs past the body. Complete suites before the end are still handed over, because
// real APs ship truncated RSN elements whose leading suites are sound.
template <typename OnSuite>
std::optional<std::size_t> walkSuiteList(const Span& body, std::size_t offset, OnSuite onSuite)
{
    if (offset + 2 > body.size)
        return std::nullopt;
    const std::size_t count = readLe16(body.data + offset);
    offset += 2;
    for (std::size_t i = 0; i < count; ++i) {
        if (offset + 4 > body.size)
            return std::nullopt;
        onSuite(body.data + offset);
        offset += 4;
    }
    return offset;
}

unsigned rsnAkms(const Span& rsn)
{
    // Version (2) and group cipher (4) come before the pairwise list.
    const auto afterPairwise = walkSuiteList(rsn, 6, [](const std::uint8_t*) {});
    if (!afterPairwise)
        return 0;
    unsigned akms = 0;
    walkSuiteList(rsn, *afterPairwise, [&akms](const std::uint8_t* suite) {
        if (suite[0] != 0x00 || suite[1] != 0x0F || suite[2] != 0xAC)
            return;
        switch (suite[3]) {
        case 1: case 3: case 5: akms |= AkmEnterprise; break;
        case 11: case 12: case 13: akms |= AkmSuiteB; break;
        case 2: case 4: case 6: akms |= AkmPsk; break;
        case 8: case 9: case 24: case 25: akms |= AkmSae; break;
        default: break;
        }
    });
    return akms;
}

unsigned wpaAkms(const Span& wpa)
{
    // OUI and type (4), version (2) and group cipher (4) come before the pairwise list.
    const auto afterPairwise = walkSuiteList(wpa, 10, [](const std::uint8_t*) {});
    if (!afterPairwise)
        return 0;
    unsigned akms = 0;
    walkSuiteList(wpa, *afterPairwise, [&akms](const std::uint8_t* suite) {
        if (suite[0] != 0x00 || suite[1] != 0x50 || suite[2] != 0xF2)
            return;
        if (suite[3] == 1)
            akms |= AkmEnterprise;
        else if (suite[3] == 2)
            akms |= AkmPsk;
    });
    return akms;
}

int securityMode(const ElementFacts& facts, std::uint16_t capabilityInfo)
{
    const bool hasRsn = facts.rsn.present();
    const bool hasWpa = facts.wpa.present();
    if (!hasRsn && !hasWpa)
        return (capabilityInfo & capabilityPrivacy) ? platform::SecurityWEP : platform::SecurityNone;

    const unsigned rsn = hasRsn ? rsnAkms(facts.rsn) : 0;
    const unsigned wpa = hasWpa ? wpaAkms(facts.wpa) : 0;

    if (rsn & AkmSae)
        return platform::SecurityPersonal;

    const bool rsnEnterprise = (rsn & AkmEnterprise) != 0;
    const bool wpaEnterprise = (wpa & AkmEnterprise) != 0;
    if (rsnEnterprise || wpaEnterprise || (rsn & AkmSuiteB)) {
        if (wpaEnterprise)
            return (rsnEnterprise || (rsn & AkmSuiteB)) ? platform::SecurityWPAEnterpriseMixed
                                                        : platform::SecurityWPAEnterprise;
        return rsnEnterprise ? platform::SecurityWPA2Enterprise : platform::SecurityEnterprise;
    }

    const bool rsnPsk = (rsn & AkmPsk) != 0;
    const bool wpaPsk = (wpa & AkmPsk) != 0;
    if (wpaPsk)
        return rsnPsk ? platform::SecurityWPAPersonalMixed : platform::SecurityWPAPersonal;
    if (rsnPsk)
        return platform::SecurityWPA2Personal;
    return hasRsn ? platform::SecurityWPA2Personal : platform::SecurityWPAPersonal;
}

int channelFromElements(const ElementFacts& facts)
{
    if (facts.dsParameterSet.size >= 1 && facts.dsParameterSet.at(0) != 0)
        return facts.dsParameterSet.at(0);
    if (facts.htOperation.size >= 1 && facts.htOperation.at(0) != 0)
        return facts.htOperation.at(0);
    return 0;
}

ChannelBand bandForFrequency(int frequencyMhz)
{
    if (frequencyMhz >= 2400 && frequencyMhz < 2500)
        return ChannelBand::Band2GHz;
    if (frequencyMhz >= 4900 && frequencyMhz < 5900)
        return ChannelBand::Band5GHz;
    return ChannelBand::Unknown;
}

ChannelWidthCode widthFromElements(const ElementFacts& facts)
{
    if (facts.vhtOperation.size >= 3) {
        const int field = facts.vhtOperation.at(0);
        const int segment0 = facts.vhtOperation.at(1);
        const int segment1 = facts.vhtOperation.at(2);
        // Field 3 is the retired way to announce 80+80; field 1 with a distant second
        // segment is the current one. Both are reported as 160 MHz.
        if (field == 2 || field == 3)
            return ChannelWidthCode::Width160MHz;
        if (field == 1) {
            if (segment1 == 0)
                return ChannelWidthCode::Width80MHz;
            const int gap = std::abs(segment1 - segment0);
            return (gap == 8 || gap > 16) ? ChannelWidthCode::Width160MHz : ChannelWidthCode::Width80MHz;
        }
    }
    if (facts.htOperation.size >= 2) {
        const std::uint8_t info = facts.htOperation.at(1);
        const int offset = info & 0x03;
        if ((offset == 1 || offset == 3) && (info & 0x04))
            return ChannelWidthCode::Width40MHz;
    }
    return ChannelWidthCode::Width20MHz;
}

std::uint32_t phyModes(const ElementFacts& facts, ChannelBand band)
{
    std::uint32_t modes = 0;
    if (band == ChannelBand::Band5GHz)
        modes |= platform::PhyA;
    if (facts.hasCckRate)
        modes |= platform::PhyB;
    if (facts.hasOfdmRate && band == ChannelBand::Band2GHz)
        modes |= platform::PhyG;
    if (facts.hasHtCapabilities)
        modes |= platform::PhyN;
    if (facts.hasVhtCapabilities)
        modes |= platform::PhyAC;
    return modes;
}

// Strict: overlong forms, surrogates and code points past U+10FFFF are not UTF-8, so such an
// SSID falls back to Latin-1 rather than turning into replacement characters.
bool isValidUtf8(const std::uint8_t* s, std::size_t n)
{
    std::size_t i = 0;
    while (i < n) {
        const std::uint8_t c = s[i];
        if (c < 0x80) {
            ++i;
            continue;
        }
        std::size_t extra = 0;
        std::uint32_t min = 0;
        std::uint32_t cp = 0;
        if ((c & 0xE0) == 0xC0) {
            extra = 1; min = 0x80; cp = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            extra = 2; min = 0x800; cp = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            extra = 3; min = 0x10000; cp = c & 0x07;
        } else {
            return false;
        }
        if (extra > n - i - 1)
            return false;
        for (std::size_t k = 1; k <= extra; ++k) {
            const std::uint8_t cc = s[i + k];
            if ((cc & 0xC0) != 0x80)
                return false;
            cp = (cp << 6) | (cc & 0x3F);
        }
        if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
            return false;
        i += extra + 1;
    }
    return true;
}

} // namespace

namespace derivation {

QString ssidText(const QByteArray& ssidBytes)
{
    if (ssidBytes.isEmpty())
        return QStringLiteral("");
    const auto* data = reinterpret_cast<const std::uint8_t*>(ssidBytes.constData());
    const std::size_t size = static_cast<std::size_t>(ssidBytes.size());
    bool allZero = true;
    for (std::size_t i = 0; i < size && allZero; ++i)
        allZero = data[i] == 0;
    if (allZero)
        return QStringLiteral("");
    if (isValidUtf8(data, size))
        return QString::fromUtf8(ssidBytes);
    return QString::fromLatin1(ssidBytes);
}

ChannelBand bandForChannel(int channel)
{
    if (channel <= 0)
        return ChannelBand::Unknown;
    return channel <= 14 ? ChannelBand::Band2GHz : ChannelBand::Band5GHz;
}

std::optional<int> channelForFrequency(int frequencyMhz)
{
    if (frequencyMhz == 2484)
        return 14;
    if (frequencyMhz >= 2412 && frequencyMhz <= 2472 && (frequencyMhz - 2407) % 5 == 0)
        return (frequencyMhz - 2407) / 5;
    // The 4.9 GHz public-safety band numbers its channels from 4000 MHz.
    if (frequencyMhz >= 4910 && frequencyMhz <= 4990 && frequencyMhz % 5 == 0)
        return (frequencyMhz - 4000) / 5;
    // Starts above channel 14 so a 5 GHz number can never be mistaken for a 2.4 GHz one.
    if (frequencyMhz >= 5150 && frequencyMhz <= 5895 && frequencyMhz % 5 == 0)
        return (frequencyMhz - 5000) / 5;
    return std::nullopt;
}

} // namespace derivation

platform::ScanResult deriveScanResult(const RawBssFacts& facts)
{
    const ElementFacts elements = walkElements(facts.informationElements);
    platform::ScanResult result;

    if (elements.ssid.present()) {
        result.ssidData = QByteArray(reinterpret_cast<const char*>(elements.ssid.data),
                                     static_cast<qsizetype>(elements.ssid.size));
    }
    result.ssid = derivation::ssidText(result.ssidData);
    result.bssid = facts.bssid;

    int channel = channelFromElements(elements);
    if (channel == 0 && facts.frequencyMhz)
        channel = derivation::channelForFrequency(*facts.frequencyMhz).value_or(0);
    result.channelNumber = channel;
    result.channelBand = derivation::bandForChannel(channel);
    if (result.channelBand == ChannelBand::Unknown && facts.frequencyMhz)
        result.channelBand = bandForFrequency(*facts.frequencyMhz);

    result.channelWidth = widthFromElements(elements);
    result.phyModes = phyModes(elements, result.channelBand);

    if (elements.country.size >= 2) {
        result.countryCode = QString::fromLatin1(reinterpret_cast<const char*>(elements.country.data), 2);
    }

    result.ibss = (facts.capabilityInfo & capabilityIbss) != 0;
    result.beaconInterval = facts.beaconInterval;
    result.rssiValue = facts.signalDbm;
    result.noiseMeasurement = facts.noiseDbm;
    result.informationElementData = facts.informationElements;

    result.securityMode = securityMode(elements, facts.capabilityInfo);
    result.secured = result.securityMode != platform::SecurityNone;
    return result;
}
