#include "platform/sim/radio_environment.h"

#include <QSet>

#include <gtest/gtest.h>

namespace {

using namespace platform;
using namespace platform::sim;

const QDateTime start = QDateTime::fromSecsSinceEpoch(1'750'000'000);

QDateTime after(int seconds) { return start.addSecs(seconds); }

// What a scanner would compare between two scans of the same world.
QStringList fingerprint(const QList<ScanResult>& scan)
{
    QStringList lines;
    for (const ScanResult& r : scan) {
        lines << QStringLiteral("%1 %2 %3 %4 %5").arg(r.bssid).arg(r.rssiValue).arg(r.noiseMeasurement)
                     .arg(r.ssid, QString::fromLatin1(r.informationElementData.toHex()));
    }
    return lines;
}

QSet<QString> bssids(const QList<ScanResult>& scan)
{
    QSet<QString> set;
    for (const ScanResult& r : scan)
        set.insert(r.bssid);
    return set;
}

bool announcesElement(const ScanResult& r, std::uint8_t id, const QByteArray& vendorPrefix = {})
{
    const QByteArray& ie = r.informationElementData;
    for (qsizetype pos = 0; pos + 2 <= ie.size(); pos += 2 + static_cast<std::uint8_t>(ie[pos + 1])) {
        if (static_cast<std::uint8_t>(ie[pos]) == id && ie.mid(pos + 2).startsWith(vendorPrefix))
            return true;
    }
    return false;
}

TEST(RadioEnvironment, SameSeedAndTimesGiveTheSameScansAndOtherSeedsDiffer)
{
    RadioEnvironment a(7, 40);
    RadioEnvironment b(7, 40);
    RadioEnvironment other(8, 40);
    // b is asked out of order and more often: answers depend on the time asked about only.
    b.scanAll(after(900));
    for (const int seconds : {0, 1, 61, 601}) {
        const QStringList first = fingerprint(a.scanAll(after(seconds)));
        EXPECT_EQ(first, fingerprint(b.scanAll(after(seconds)))) << seconds;
        EXPECT_NE(first, fingerprint(other.scanAll(after(seconds)))) << seconds;
    }
    EXPECT_NE(bssids(a.scanAll(start)), bssids(other.scanAll(start)));
}

TEST(RadioEnvironment, DefaultWorldHoldsEveryKindOfNetwork)
{
    RadioEnvironment environment(defaultSimulationSeed, defaultAccessPointCount);
    ASSERT_EQ(environment.accessPoints().size(), 40u);
    QList<ScanResult> heard;
    for (int seconds = 0; seconds < 30; ++seconds)
        heard += environment.scanAll(after(seconds));

    QSet<int> widths, securities, channels24, channels5;
    QSet<QString> ouis;
    QHash<QByteArray, QSet<ChannelBand>> bandsOfSsid;
    bool dfs = false, emptyHidden = false, zeroHidden = false, ibss = false;
    bool wps = false, load = false, roaming = false, deviceName = false, vendorName = false;
    for (const ScanResult& r : heard) {
        widths.insert(static_cast<int>(r.channelWidth));
        securities.insert(r.securityMode);
        (r.channelBand == ChannelBand::Band2GHz ? channels24 : channels5).insert(r.channelNumber);
        dfs |= r.channelNumber >= 52 && r.channelNumber <= 144;
        emptyHidden |= r.ssidData.isEmpty();
        zeroHidden |= !r.ssidData.isEmpty() && r.ssid.isEmpty();
        ibss |= r.ibss;
        ouis.insert(r.bssid.left(8));
        if (!r.ssid.isEmpty())
            bandsOfSsid[r.ssidData].insert(r.channelBand);
        wps |= announcesElement(r, 221, QByteArray("\x00\x50\xF2\x04", 4));
        load |= announcesElement(r, 11);
        roaming |= announcesElement(r, 54);
        deviceName |= announcesElement(r, 133);
        vendorName |= announcesElement(r, 221, QByteArray("\x00\x0B\x86\x01\x03", 5));
    }
    EXPECT_EQ(widths, (QSet<int>{1, 2, 3, 4}));
    for (const int security : {SecurityNone, SecurityWEP, SecurityWPAPersonal, SecurityWPAPersonalMixed,
                               SecurityWPA2Personal, SecurityPersonal, SecurityWPA2Enterprise})
        EXPECT_TRUE(securities.contains(security)) << security;
    EXPECT_GE(channels24.size(), 3);
    EXPECT_GE(channels5.size(), 3);
    EXPECT_TRUE(dfs && emptyHidden && zeroHidden && ibss);
    EXPECT_TRUE(wps && load && roaming && deviceName && vendorName);
    EXPECT_GE(ouis.size(), 10);
    const auto dualBand = std::count_if(bandsOfSsid.cbegin(), bandsOfSsid.cend(),
                                        [](const QSet<ChannelBand>& bands) { return bands.size() == 2; });
    EXPECT_GE(dualBand, 2);
}

TEST(RadioEnvironment, LargestWorldHasUniqueBssidsAndScansQuickly)
{
    RadioEnvironment environment(3, 100000);
    ASSERT_EQ(environment.accessPoints().size(), 5000u);
    QSet<QString> unique;
    for (const SimulatedAccessPoint& ap : environment.accessPoints())
        unique.insert(ap.bssid);
    EXPECT_EQ(unique.size(), 5000);
    EXPECT_GT(environment.scanAll(start).size(), 3000);
}

TEST(RadioEnvironment, SignalsLoadAndPresenceChangeOverTime)
{
    RadioEnvironment environment(defaultSimulationSeed, 200);
    const std::size_t home = environment.homeIndex();

    QSet<int> homeSignals;
    for (int seconds = 0; seconds < 120; seconds += 5)
        homeSignals.insert(environment.signalDbm(home, after(seconds)));
    EXPECT_GE(homeSignals.size(), 4);

    // Over two hours some network both comes and goes, while the home network never leaves.
    QSet<QString> everHeard, heardEveryTime = bssids(environment.scanAll(start));
    for (int minutes = 0; minutes <= 120; minutes += 2) {
        const QDateTime at = after(60 * minutes);
        const QSet<QString> now = bssids(environment.scanAll(at));
        everHeard.unite(now);
        heardEveryTime.intersect(now);
        EXPECT_TRUE(environment.isPresent(home, at));
    }
    EXPECT_GT(everHeard.size(), heardEveryTime.size());

    // The BSS load element in the beacons follows the load model.
    int changed = 0;
    const QList<ScanResult> early = environment.scanAll(start);
    const QList<ScanResult> late = environment.scanAll(after(600));
    for (const ScanResult& before : early) {
        for (const ScanResult& later : late) {
            if (later.bssid == before.bssid && announcesElement(before, 11) &&
                later.informationElementData != before.informationElementData)
                ++changed;
        }
    }
    EXPECT_GT(changed, 0);
    for (std::size_t i = 0; i < environment.accessPoints().size(); ++i) {
        if (!environment.accessPoints()[i].announcesLoad)
            continue;
        const BssLoad a = environment.load(i, start);
        const BssLoad b = environment.load(i, after(9));  // same ten-second step
        EXPECT_EQ(a.stationCount, b.stationCount);
        EXPECT_EQ(a.utilization255, b.utilization255);
    }
}

TEST(RadioEnvironment, DirectedScansFindHiddenNetworksByNameAndSingleBssids)
{
    RadioEnvironment environment(defaultSimulationSeed, defaultAccessPointCount);
    const QList<ScanResult> hidden = environment.scanForSsid(start, "Hidden Lab");
    ASSERT_EQ(hidden.size(), 1);
    EXPECT_EQ(hidden[0].ssid, QStringLiteral("Hidden Lab"));
    const QList<ScanResult> beacon = environment.scanForBssid(start, hidden[0].bssid.toUpper());
    ASSERT_EQ(beacon.size(), 1);
    EXPECT_EQ(beacon[0].ssid, QString());

    const QList<ScanResult> corp = environment.scanForSsid(start, "Skyvane Corp");
    EXPECT_GE(corp.size(), 2);
    for (const ScanResult& r : corp)
        EXPECT_EQ(r.ssid, QStringLiteral("Skyvane Corp"));
    EXPECT_TRUE(environment.scanForSsid(start, "No Such Network").isEmpty());
    EXPECT_TRUE(environment.scanForBssid(start, QStringLiteral("00:00:00:00:00:01")).isEmpty());
}

} // namespace
