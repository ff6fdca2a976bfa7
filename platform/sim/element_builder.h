#pragma once

#include <QByteArray>
#include <QList>

#include <cstdint>

// Writes 802.11 information elements as an access point puts them in its beacon, so simulated
// networks go through the same decoding as heard ones. Each call appends one element.
namespace platform::sim {

enum class CipherSuite : std::uint8_t { Wep40 = 1, Tkip = 2, Ccmp = 4, Wep104 = 5, Gcmp256 = 9 };
enum class AkmSuite : std::uint8_t { Ieee8021X = 1, Psk = 2, FtIeee8021X = 3, FtPsk = 4, Sae = 8, FtSae = 9 };
enum class SecondaryChannel : std::uint8_t { None = 0, Above = 1, Below = 3 };

struct HtCapabilities {
    bool fortyMhz = false;
    bool shortGi20 = false;
    bool shortGi40 = false;
    int spatialStreams = 1;
};

struct VhtCapabilities {
    bool supports160 = false;
    bool shortGi80 = false;
    int spatialStreams = 1;
};

class ElementBuilder {
public:
    ElementBuilder& ssid(const QByteArray& ssid);
    // Rates in units of 500 kbit/s; basic rates carry the high bit.
    ElementBuilder& supportedRates(const QList<std::uint8_t>& rates);
    ElementBuilder& extendedRates(const QList<std::uint8_t>& rates);
    ElementBuilder& dsParameterSet(int channel);
    // One (first channel, count, max dBm) triplet per sub-band.
    struct CountryTriplet {
        int firstChannel;
        int channelCount;
        int maxPowerDbm;
    };
    ElementBuilder& country(const QByteArray& code, const QList<CountryTriplet>& triplets);
    ElementBuilder& bssLoad(int stationCount, int utilization255, int admissionCapacity);
    ElementBuilder& htCapabilities(const HtCapabilities& caps);
    ElementBuilder& htOperation(int primaryChannel, SecondaryChannel secondary);
    ElementBuilder& vhtCapabilities(const VhtCapabilities& caps);
    // channelWidthField: 0 = 20/40, 1 = 80 (160 when segment1 is set), 2 = 160 (old form).
    ElementBuilder& vhtOperation(int channelWidthField, int segment0, int segment1);
    ElementBuilder& rsn(CipherSuite group, const QList<CipherSuite>& pairwise, const QList<AkmSuite>& akms,
                        std::uint16_t capabilities = 0);
    ElementBuilder& wpa(CipherSuite group, const QList<CipherSuite>& pairwise, const QList<AkmSuite>& akms);
    ElementBuilder& wps(bool configured);
    ElementBuilder& mobilityDomain(std::uint16_t domainId, bool overDs);
    // The 30-byte device-name element: 16 name bytes at body offset 9, then the client count.
    ElementBuilder& deviceName(const QByteArray& name, int clientCount);
    // Aruba's vendor element that carries the AP name.
    ElementBuilder& vendorApName(const QByteArray& name);
    ElementBuilder& raw(std::uint8_t id, const QByteArray& body);

    // Where the body of the last BSS load element starts, or -1; the load changes while the
    // rest of the beacon does not, so it is patched in place.
    qsizetype bssLoadOffset() const { return bssLoadOffset_; }
    const QByteArray& bytes() const { return bytes_; }

    static void patchBssLoad(QByteArray& elements, qsizetype offset, int stationCount, int utilization255);

private:
    ElementBuilder& element(std::uint8_t id, const QByteArray& body);

    QByteArray bytes_;
    qsizetype bssLoadOffset_ = -1;
};

} // namespace platform::sim
