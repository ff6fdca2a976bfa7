#pragma once

#include "platform/api/wireless_types.h"
#include "scan/scan_result_derivation.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstdint>
#include <map>
#include <optional>

struct nl_msg;

// Turns nl80211 reply and event messages into plain values. No socket code lives here, so tests
// hand the parsers messages built in-process and exercise exactly the path live replies take.
// Every attribute is length-checked before it is read: a short or missing one is simply absent.
namespace platform::nl80211 {

struct InterfaceInfo {
    int ifindex = 0;
    QString name;
    std::optional<std::uint32_t> wiphy;
    std::uint32_t iftype = 0;                   // enum nl80211_iftype
    QString macAddress;
    std::optional<int> frequencyMhz;
    std::optional<std::uint32_t> channelWidth;  // enum nl80211_chan_width
    std::optional<int> centerFrequency1Mhz;
    std::optional<int> centerFrequency2Mhz;
    std::optional<int> txPowerMbm;
    QByteArray ssid;
};

// One transmit or receive rate. HT reports its MCS index as 802.11n numbers it (0-31, streams
// folded in); VHT, HE and EHT report the per-stream index with the stream count beside it.
struct RateInfo {
    std::optional<int> bitrate100Kbps;
    std::optional<int> mcs;
    std::optional<int> spatialStreams;
    // HT/VHT short guard interval, or the 0.8 µs guard interval of HE/EHT; unset when not reported.
    std::optional<bool> shortGuardInterval;
    int widthMhz = 20;
};

struct StationInfo {
    QString macAddress;
    std::optional<int> signalDbm;
    std::optional<RateInfo> txRate;
};

struct SurveyEntry {
    int frequencyMhz = 0;
    std::optional<int> noiseDbm;
    bool inUse = false;
};

struct RegulatoryInfo {
    QString alpha2;
    std::optional<std::uint32_t> wiphy;
};

struct ScanEntry {
    int ifindex = 0;
    scan::RawBssFacts facts;
    std::optional<std::uint32_t> status;  // enum nl80211_bss_status, only on the interface's own BSS
};

struct WiphyInfo {
    std::uint32_t index = 0;
    QString name;
    QList<platform::WlanChannel> channels;  // enabled 2.4 and 5 GHz channels, ascending
    std::uint32_t phyModes = 0;             // PhyModeBit set over all bands
    std::uint32_t phyModes2GHz = 0;
    std::uint32_t phyModes5GHz = 0;
    bool supportsStation = false;
    bool supportsIbss = false;
    int maxScanSsids = 0;
};

// What an event on the "config" or "scan" multicast groups is about.
struct Event {
    std::uint8_t command = 0;  // enum nl80211_commands
    std::optional<int> ifindex;
    std::optional<std::uint32_t> wiphy;
};

std::optional<InterfaceInfo> parseInterface(nl_msg* message);
std::optional<StationInfo> parseStation(nl_msg* message);
std::optional<SurveyEntry> parseSurvey(nl_msg* message);
std::optional<RegulatoryInfo> parseRegulatory(nl_msg* message);
std::optional<ScanEntry> parseScanEntry(nl_msg* message);
std::optional<Event> parseEvent(nl_msg* message);

// A split wiphy dump spreads one wiphy (and even one band) over several messages; this gathers
// them by wiphy index and band index before anything is concluded from them.
class WiphyCollector {
public:
    void add(nl_msg* message);
    QList<WiphyInfo> wiphys() const;

    struct BandFacts {
        std::map<int, bool> frequencies;  // MHz -> disabled
        bool hasCckRate = false;
        bool hasOfdmRate = false;
        bool hasHt = false;
        bool hasVht = false;
    };
    struct Partial {
        QString name;
        std::map<int, BandFacts> bands;
        bool supportsStation = false;
        bool supportsIbss = false;
        int maxScanSsids = 0;
    };

private:
    std::map<std::uint32_t, Partial> partial_;
};

// The same BSSID can come back twice: once from a hidden beacon and once, named, from a probe
// response. Keeps one entry per BSSID, the named one when there is one, in first-seen order.
QList<platform::ScanResult> mergeHiddenDuplicates(const QList<platform::ScanResult>& results);

QString macText(const QByteArray& bytes);
std::optional<platform::WlanChannel> channelOf(const InterfaceInfo& info);
int milliwattsFromMbm(int mbm);
// The highest generation both ends of the link speak on the link's band.
int activePhyMode(const WiphyInfo& wiphy, const platform::ScanResult& accessPoint);

} // namespace platform::nl80211
