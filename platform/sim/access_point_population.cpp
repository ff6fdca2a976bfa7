#include "platform/sim/access_point_population.h"

#include "core/units.h"
#include "platform/sim/beacon_elements.h"
#include "platform/sim/sim_random.h"

#include <QList>

#include <algorithm>
#include <array>
#include <set>

namespace platform::sim {

namespace {

// Real registered prefixes, so the vendor column names real makers.
enum Vendor : int {
    Avm, AvmOther, TpLink, TpLinkOther, Netgear, NetgearOther, Ubiquiti, UbiquitiOther, Cisco, Aruba,
    ArubaOther, DLink, Linksys, Huawei, Google, Eero, Freebox, Belkin, Apple, Edimax,
    LocallyAdministered,
};

constexpr std::array<std::array<std::uint8_t, 3>, 20> vendorOuis = {{
    {0x3C, 0xA6, 0x2F}, {0x2C, 0x3A, 0xFD}, {0x10, 0xFE, 0xED}, {0xA0, 0xF3, 0xC1}, {0x00, 0x14, 0x6C},
    {0xE4, 0xF4, 0xC6}, {0xFC, 0xEC, 0xDA}, {0x78, 0x8A, 0x20}, {0x00, 0x00, 0x0C}, {0x00, 0x0B, 0x86},
    {0x00, 0x1A, 0x1E}, {0xF0, 0xB4, 0xD2}, {0xC8, 0xD7, 0x19}, {0x00, 0xE0, 0xFC}, {0xF4, 0xF5, 0xD8},
    {0xF8, 0xBB, 0xBF}, {0x00, 0x24, 0xD4}, {0x00, 0x22, 0x75}, {0x3C, 0x2E, 0xFF}, {0x74, 0xDA, 0x38},
}};

struct RadioPlan {
    int channel;
    int widthMhz;
    int signalDbm;
};

struct GroupPlan {
    QByteArray ssid{};
    SecurityKind security = SecurityKind::Wpa2;
    HiddenStyle hidden = HiddenStyle::Visible;
    int vendor = Avm;
    QList<RadioPlan> radios{};
    bool ibss = false;
    bool legacy = false;
    bool wps = false;
    bool fastRoaming = false;
    bool load = false;
    bool transient = false;
    bool country = true;
    ApNameKind apName = ApNameKind::None;
    QByteArray apNamePrefix{};
    int streams = 2;
};

// Enough variety that the default world already holds every kind of network: both bands with
// DFS channels, every width, every security family, both hidden forms, one SSID on several
// BSSIDs and both bands, WPS, BSS load, fast roaming, both AP-name elements and an ad-hoc cell.
QList<GroupPlan> fixedGroups()
{
    using S = SecurityKind;
    return {
        {.ssid = "Skyvane Home", .vendor = Avm, .radios = {{6, 20, -55}, {36, 80, -60}}, .wps = true},
        {.ssid = "Skyvane Corp", .security = S::Wpa2Enterprise, .vendor = Cisco,
         .radios = {{1, 20, -58}, {52, 80, -62}, {11, 20, -71}, {100, 160, -74}}, .fastRoaming = true, .load = true,
         .apName = ApNameKind::DeviceNameElement, .apNamePrefix = "CORP-AP", .streams = 4},
        {.ssid = "Skyvane Lab", .security = S::Wpa3, .vendor = Aruba, .radios = {{44, 40, -66}, {132, 80, -70}},
         .fastRoaming = true, .load = true, .apName = ApNameKind::VendorElement, .apNamePrefix = "lab-ap", .streams = 3},
        {.ssid = "Cafe Guest", .security = S::Open, .vendor = Ubiquiti, .radios = {{11, 40, -69}, {149, 20, -75}},
         .load = true},
        {.ssid = "OldRouter", .security = S::Wep, .vendor = Belkin, .radios = {{3, 20, -81}}, .legacy = true,
         .country = false},
        {.ssid = "Linksys-Legacy", .security = S::Wpa, .vendor = Linksys, .radios = {{9, 20, -77}}, .legacy = true},
        {.ssid = "Hidden Lab", .hidden = HiddenStyle::Empty, .vendor = Ubiquiti, .radios = {{64, 20, -73}}},
        {.ssid = "Secret Garden", .hidden = HiddenStyle::ZeroFilled, .vendor = TpLink, .radios = {{1, 20, -79}}},
        {.ssid = "FRITZ!Box Mixed", .security = S::WpaWpa2Mixed, .vendor = AvmOther, .radios = {{6, 40, -72}},
         .wps = true},
        {.ssid = "HP-Print-Setup", .security = S::Open, .vendor = LocallyAdministered, .radios = {{11, 20, -83}},
         .ibss = true, .legacy = true},
    };
}

struct Template {
    const char* pattern;  // %1 takes a random tag
    int vendor;
    SecurityKind security;
    int bands;  // 0: 2.4 GHz, 1: both, 2: 5 GHz
    int maxNodes;
};

constexpr std::array<Template, 14> templates = {{
    {"FRITZ!Box 7590 %1", Avm, SecurityKind::Wpa2, 1, 2},
    {"Vodafone-%1", Huawei, SecurityKind::Wpa2, 1, 1},
    {"TP-Link_%1", TpLinkOther, SecurityKind::Wpa2, 0, 1},
    {"NETGEAR%1", Netgear, SecurityKind::Wpa2, 1, 1},
    {"MagentaWLAN-%1", AvmOther, SecurityKind::Wpa2, 1, 1},
    {"Freebox-%1", Freebox, SecurityKind::WpaWpa2Mixed, 1, 1},
    {"dlink-%1", DLink, SecurityKind::Wpa2, 0, 1},
    {"Familie Müller %1", Eero, SecurityKind::Wpa3, 1, 3},
    {"Google-%1", Google, SecurityKind::Wpa2, 1, 3},
    {"iPhone von %1", Apple, SecurityKind::Wpa2, 3, 1},
    {"DIRECT-%1-HP OfficeJet", LocallyAdministered, SecurityKind::Wpa2, 0, 1},
    {"Café Zürich %1", UbiquitiOther, SecurityKind::Open, 1, 2},
    {"eduroam %1", Aruba, SecurityKind::Wpa2Enterprise, 1, 3},
    {"Belkin.%1", Belkin, SecurityKind::Wpa, 0, 1},
}};

constexpr std::array<int, 4> widths5 = {20, 40, 80, 160};

int random24Channel(SimRandom& rng)
{
    if (rng.chance(0.75))
        return rng.pick(std::array<int, 3>{1, 6, 11});
    return rng.between(1, 13);
}

// A primary channel whose block of the given width exists in the 5 GHz plan.
int random5Channel(SimRandom& rng, int widthMhz)
{
    static const QList<int> all = {36, 40, 44, 48, 52, 56, 60, 64, 100, 104, 108, 112, 116, 120, 124,
                                   128, 132, 136, 140, 144, 149, 153, 157, 161, 165};
    static const QList<int> starts40 = {36, 44, 52, 60, 100, 108, 116, 124, 132, 140, 149, 157};
    static const QList<int> starts80 = {36, 52, 100, 116, 132, 149};
    static const QList<int> starts160 = {36, 100};
    switch (widthMhz) {
    case 40: return rng.pick(starts40) + 4 * rng.below(2);
    case 80: return rng.pick(starts80) + 4 * rng.below(4);
    case 160: return rng.pick(starts160) + 4 * rng.below(8);
    default: return rng.pick(all);
    }
}

int random5Width(SimRandom& rng)
{
    const int draw = rng.below(100);
    return draw < 15 ? widths5[0] : draw < 35 ? widths5[1] : draw < 85 ? widths5[2] : widths5[3];
}

QByteArray randomTag(SimRandom& rng)
{
    static const QList<QByteArray> names = {"Anna", "Jonas", "Lea", "Mehmet", "Sofia", "Lukas", "Mia", "Noah"};
    if (rng.chance(0.3))
        return rng.pick(names);
    return QByteArray::number(static_cast<qulonglong>(rng.next() & 0xFFFF), 16).toUpper().rightJustified(4, '0');
}

GroupPlan randomGroup(SimRandom& rng)
{
    const Template& chosen = rng.pick(templates);
    GroupPlan plan;
    plan.ssid = QByteArray(chosen.pattern).replace("%1", randomTag(rng));
    plan.vendor = chosen.vendor;
    plan.security = chosen.security;
    if (rng.chance(0.08)) {
        static const QList<SecurityKind> others = {SecurityKind::Open, SecurityKind::Wep, SecurityKind::Wpa,
                                                   SecurityKind::WpaWpa2Mixed, SecurityKind::Wpa3};
        plan.security = rng.pick(others);
    }
    if (rng.chance(0.06))
        plan.hidden = rng.chance(0.5) ? HiddenStyle::Empty : HiddenStyle::ZeroFilled;
    plan.legacy = plan.security == SecurityKind::Wep || plan.security == SecurityKind::Wpa;
    plan.wps = chosen.vendor == Avm || chosen.vendor == TpLinkOther || chosen.vendor == Netgear || rng.chance(0.1);
    plan.load = chosen.security == SecurityKind::Wpa2Enterprise || chosen.security == SecurityKind::Open ||
                rng.chance(0.25);
    plan.transient = chosen.vendor == Apple || chosen.vendor == LocallyAdministered || rng.chance(0.08);
    plan.country = rng.chance(0.85);
    plan.streams = plan.legacy ? 1 : rng.between(2, chosen.security == SecurityKind::Wpa2Enterprise ? 4 : 3);
    if (chosen.security == SecurityKind::Wpa2Enterprise) {
        plan.fastRoaming = true;
        plan.vendor = rng.chance(0.5) ? Aruba : Cisco;
        plan.apName = plan.vendor == Aruba ? ApNameKind::VendorElement : ApNameKind::DeviceNameElement;
        plan.apNamePrefix = "AP-" + randomTag(rng);
    }

    const int baseSignal = -50 - rng.below(42);
    const int nodes = rng.between(1, chosen.maxNodes);
    int bands = chosen.bands == 3 ? rng.pick(std::array<int, 2>{0, 2}) : chosen.bands;
    if (plan.legacy)
        bands = 0;
    for (int node = 0; node < nodes; ++node) {
        const int nodeSignal = baseSignal - (node == 0 ? 0 : rng.below(15));
        if (bands != 2)
            plan.radios.append({random24Channel(rng), plan.legacy || rng.chance(0.75) ? 20 : 40,
                                nodeSignal + rng.between(-2, 2)});
        if (bands != 0) {
            const int width = random5Width(rng);
            plan.radios.append({random5Channel(rng, width), width, nodeSignal - 6 + rng.between(-2, 2)});
        }
    }
    return plan;
}

QString bssidText(const std::array<std::uint8_t, 6>& bytes)
{
    QString text;
    for (const std::uint8_t byte : bytes) {
        if (!text.isEmpty())
            text += QLatin1Char(':');
        text += QString::number(byte, 16).rightJustified(2, QLatin1Char('0'));
    }
    return text;
}

class Assembler {
public:
    Assembler(std::uint64_t seed, std::size_t count) : rng_(seed), count_(count) {}

    bool full(const std::vector<SimulatedAccessPoint>& out) const { return out.size() >= count_; }

    void addGroup(const GroupPlan& plan, std::vector<SimulatedAccessPoint>& out)
    {
        const std::uint16_t mobilityDomain = static_cast<std::uint16_t>(rng_.next());
        const bool vhtOnFiveGhz = rng_.chance(0.8);
        std::array<std::uint8_t, 6> base = freshBase(plan.vendor);
        for (int radio = 0; radio < plan.radios.size() && !full(out); ++radio) {
            const RadioPlan& r = plan.radios[radio];
            // Radios of one box differ in the last nibble, as most vendors number them.
            if (radio % 2 == 0 && radio > 0)
                base = freshBase(plan.vendor);
            std::array<std::uint8_t, 6> address = base;
            address[5] = static_cast<std::uint8_t>((base[5] & 0xF0) | (radio % 2));
            used_.insert(key(address));

            SimulatedAccessPoint ap;
            ap.bssid = bssidText(address);
            ap.ssid = plan.ssid;
            ap.hidden = plan.hidden;
            ap.channel = r.channel;
            ap.frequencyMhz = core::is24GhzChannel(r.channel) ? 2407 + 5 * r.channel : 5000 + 5 * r.channel;
            ap.widthMhz = r.widthMhz;
            ap.security = plan.security;
            ap.ibss = plan.ibss;
            ap.legacyOnly = plan.legacy;
            ap.vhtCapable = !plan.legacy && !core::is24GhzChannel(r.channel) && (r.widthMhz >= 80 || vhtOnFiveGhz);
            ap.spatialStreams = plan.streams;
            ap.shortGi = rng_.chance(0.8);
            ap.wps = plan.wps;
            ap.fastRoaming = plan.fastRoaming;
            ap.mobilityDomainId = mobilityDomain;
            ap.apNameKind = plan.apName;
            if (plan.apName != ApNameKind::None)
                ap.apName = plan.apNamePrefix + '-' + QByteArray::number(radio + 1);
            ap.announcesLoad = plan.load;
            ap.baseStationCount = rng_.between(0, 30);
            ap.baseUtilization255 = rng_.between(5, 180);
            ap.announcesCountry = plan.country;
            ap.baseSignalDbm = r.signalDbm;
            ap.transient = plan.transient;
            buildBeacon(ap);
            out.push_back(std::move(ap));
        }
    }

    SimRandom& rng() { return rng_; }

private:
    static std::uint64_t key(const std::array<std::uint8_t, 6>& address)
    {
        std::uint64_t value = 0;
        for (const std::uint8_t byte : address)
            value = (value << 8) | byte;
        return value;
    }

    // The first two of the box's last nibbles must be free, so both radios stay unique.
    std::array<std::uint8_t, 6> freshBase(int vendor)
    {
        while (true) {
            std::array<std::uint8_t, 6> address{};
            const std::uint64_t bits = rng_.next();
            for (std::size_t i = 0; i < 6; ++i)
                address[i] = static_cast<std::uint8_t>(bits >> (8 * i));
            if (vendor == LocallyAdministered) {
                address[0] = static_cast<std::uint8_t>((address[0] & 0xFC) | 0x02);
            } else {
                const auto& oui = vendorOuis[static_cast<std::size_t>(vendor)];
                std::copy(oui.begin(), oui.end(), address.begin());
            }
            address[5] &= 0xF0;
            std::array<std::uint8_t, 6> second = address;
            second[5] |= 1;
            if (!used_.contains(key(address)) && !used_.contains(key(second)))
                return address;
        }
    }

    SimRandom rng_;
    std::size_t count_;
    std::set<std::uint64_t> used_;
};

} // namespace

AccessPointPopulation::AccessPointPopulation(std::uint64_t seed, int count)
{
    const auto wanted = static_cast<std::size_t>(std::clamp(count, 1, maximumAccessPointCount));
    accessPoints_.reserve(wanted);
    Assembler assembler(seed, wanted);
    for (const GroupPlan& plan : fixedGroups()) {
        if (assembler.full(accessPoints_))
            break;
        assembler.addGroup(plan, accessPoints_);
    }
    while (!assembler.full(accessPoints_))
        assembler.addGroup(randomGroup(assembler.rng()), accessPoints_);
    homeIndex_ = std::min<std::size_t>(1, accessPoints_.size() - 1);
}

} // namespace platform::sim
