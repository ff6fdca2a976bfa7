#include "scan/scan_result_derivation.h"

#include "scan/element_ids.h"
#include "scan/element_iterator.h"
#include "scan/suite_reader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>

namespace scan {

namespace {

using platform::ChannelBand;
using platform::ChannelWidthCode;

constexpr std::uint16_t capabilityIbss = 0x0002;
constexpr std::uint16_t capabilityPrivacy = 0x0010;

namespace element = scan::element;
using scan::ByteReader;

// Authentication families seen in the AKM lists of the RSN and WPA elements.
enum AkmBit : unsigned {
    AkmEnterprise = 1u << 0,
    AkmSuiteB = 1u << 1,
    AkmPsk = 1u << 2,
    AkmSae = 1u << 3,
    AkmOwe = 1u << 4,
};

// What one walk over the elements collects. The first occurrence of each element wins, as for
// the SSID, except HT Operation: the element parser keeps the last one's secondary-channel
// offset, and the width must come from that same element.
struct ElementFacts {
    std::optional<ByteReader> ssid;
    std::optional<ByteReader> dsParameterSet;
    std::optional<ByteReader> country;
    std::optional<ByteReader> htOperation;
    std::optional<ByteReader> vhtOperation;
    std::optional<ByteReader> rsn;
    std::optional<ByteReader> wpa;
    bool hasHtCapabilities = false;
    bool hasVhtCapabilities = false;
    bool hasCckRate = false;
    bool hasOfdmRate = false;
};

void noteRates(const ByteReader& rates, ElementFacts& facts)
{
    for (std::size_t i = 0; i < rates.size(); ++i) {
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

bool isWpaVendorElement(const ByteReader& body)
{
    return body.startsWith(0, element::MicrosoftOui) && body.at(3) == element::WpaVendorType;
}

void keepFirst(std::optional<ByteReader>& slot, const ByteReader& body)
{
    if (!slot)
        slot = body;
}

// An element whose length runs past the end ends the walk: nothing after it can be trusted.
ElementFacts walkElements(const QByteArray& bytes)
{
    ElementFacts facts;
    for (const scan::Element& e : scan::Elements(bytes)) {
        if (!e.complete())
            break;
        switch (e.id) {
        case element::Ssid: keepFirst(facts.ssid, e.body); break;
        case element::DsParameterSet: keepFirst(facts.dsParameterSet, e.body); break;
        case element::Country: keepFirst(facts.country, e.body); break;
        case element::HtOperation: facts.htOperation = e.body; break;
        case element::VhtOperation: keepFirst(facts.vhtOperation, e.body); break;
        case element::Rsn: keepFirst(facts.rsn, e.body); break;
        case element::HtCapabilities: facts.hasHtCapabilities = true; break;
        case element::VhtCapabilities: facts.hasVhtCapabilities = true; break;
        case element::SupportedRates:
        case element::ExtendedRates: noteRates(e.body, facts); break;
        case element::VendorSpecific:
            if (isWpaVendorElement(e.body))
                keepFirst(facts.wpa, e.body);
            break;
        default: break;
        }
    }
    return facts;
}

// The AKM list follows the pairwise list; a pairwise list cut short leaves no AKMs to read.
template <typename OnAkm>
void readAkms(const ByteReader& body, std::size_t pairwiseList, OnAkm onAkm)
{
    scan::SuiteReader reader(body, pairwiseList);
    if (reader.list([](const scan::Suite&) {}))
        reader.list(onAkm);
}

unsigned rsnAkms(const ByteReader& rsn)
{
    unsigned akms = 0;
    // Version (2) and group cipher (4) come before the pairwise list.
    readAkms(rsn, 6, [&akms](const scan::Suite& suite) {
        if (!suite.hasOui(element::IeeeOui))
            return;
        switch (suite.type) {
        case 1: case 3: case 5: akms |= AkmEnterprise; break;
        case 11: case 12: case 13: akms |= AkmSuiteB; break;
        case 2: case 4: case 6: akms |= AkmPsk; break;
        case 8: case 9: case 24: case 25: akms |= AkmSae; break;
        case 18: akms |= AkmOwe; break;
        default: break;
        }
    });
    return akms;
}

unsigned wpaAkms(const ByteReader& wpa)
{
    unsigned akms = 0;
    // OUI and type (4), version (2) and group cipher (4) come before the pairwise list.
    readAkms(wpa, 10, [&akms](const scan::Suite& suite) {
        if (!suite.hasOui(element::MicrosoftOui))
            return;
        if (suite.type == 1)
            akms |= AkmEnterprise;
        else if (suite.type == 2)
            akms |= AkmPsk;
    });
    return akms;
}

int securityMode(const ElementFacts& facts, std::uint16_t capabilityInfo)
{
    const bool hasRsn = facts.rsn.has_value();
    const bool hasWpa = facts.wpa.has_value();
    if (!hasRsn && !hasWpa)
        return (capabilityInfo & capabilityPrivacy) ? platform::SecurityWEP : platform::SecurityNone;

    const unsigned rsn = hasRsn ? rsnAkms(*facts.rsn) : 0;
    const unsigned wpa = hasWpa ? wpaAkms(*facts.wpa) : 0;

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
    for (const auto& element : {facts.dsParameterSet, facts.htOperation}) {
        if (element && element->has(0) && (*element)[0] != 0)
            return (*element)[0];
    }
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
    if (facts.vhtOperation && facts.vhtOperation->has(0, 3)) {
        const ByteReader& vht = *facts.vhtOperation;
        const int field = vht[0];
        const int segment0 = vht[1];
        const int segment1 = vht[2];
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
    if (facts.htOperation && facts.htOperation->has(1)) {
        const std::uint8_t info = (*facts.htOperation)[1];
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

AuthenticationSuites authenticationSuites(const QByteArray& informationElements)
{
    const ElementFacts elements = walkElements(informationElements);
    const unsigned rsn = elements.rsn ? rsnAkms(*elements.rsn) : 0;
    const unsigned wpa = elements.wpa ? wpaAkms(*elements.wpa) : 0;
    const unsigned all = rsn | wpa;
    return {(all & AkmPsk) != 0, (all & AkmSae) != 0, (all & (AkmEnterprise | AkmSuiteB)) != 0, (all & AkmOwe) != 0};
}

platform::ScanResult deriveScanResult(const RawBssFacts& facts)
{
    const ElementFacts elements = walkElements(facts.informationElements);
    platform::ScanResult result;

    if (elements.ssid) {
        result.ssidData = QByteArray(reinterpret_cast<const char*>(elements.ssid->data()),
                                     static_cast<qsizetype>(elements.ssid->size()));
    }
    result.ssid = scan::ssidText(result.ssidData);
    result.bssid = facts.bssid;

    int channel = channelFromElements(elements);
    if (channel == 0 && facts.frequencyMhz)
        channel = scan::channelForFrequency(*facts.frequencyMhz).value_or(0);
    result.channelNumber = channel;
    result.channelBand = core::bandForChannel(channel);
    if (result.channelBand == ChannelBand::Unknown && facts.frequencyMhz)
        result.channelBand = bandForFrequency(*facts.frequencyMhz);

    result.channelWidth = widthFromElements(elements);
    result.phyModes = phyModes(elements, result.channelBand);

    if (elements.country && elements.country->has(0, 2)) {
        result.countryCode = QString::fromLatin1(reinterpret_cast<const char*>(elements.country->data()), 2);
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

} // namespace scan
