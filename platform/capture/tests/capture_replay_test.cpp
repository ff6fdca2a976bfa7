#include "platform/capture/capture_replay_client.h"
#include "platform/capture/capture_reader.h"

#include "scan/scanner_utils.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <pcap/pcap.h>

#include <map>
#include <vector>

namespace platform::capture {
namespace {

using namespace std::chrono_literals;

const QString kFragattacks = QStringLiteral(SKYVANE_SHARED_DIR "/captures/fragattacks_ping_I_E_R_E-fromclient.pcapng");

struct Beacon {
    double seconds;
    std::uint8_t bssidLastByte;
    QByteArray ssid;
    int channel;
};

// A bare 802.11 beacon whose elements are its SSID and channel.
std::vector<std::uint8_t> beaconFrame(const Beacon& beacon)
{
    std::vector<std::uint8_t> frame{0x80, 0, 0, 0};
    frame.insert(frame.end(), 6, 0xff);
    for (int address = 0; address < 2; ++address)
        frame.insert(frame.end(), {0x02, 0, 0, 0, 0, beacon.bssidLastByte});
    frame.insert(frame.end(), {0, 0});         // sequence control
    frame.insert(frame.end(), 8, 0);           // timestamp
    frame.insert(frame.end(), {100, 0, 0x01, 0x04});  // interval, capabilities
    frame.push_back(0);
    frame.push_back(static_cast<std::uint8_t>(beacon.ssid.size()));
    frame.insert(frame.end(), beacon.ssid.begin(), beacon.ssid.end());
    frame.insert(frame.end(), {3, 1, static_cast<std::uint8_t>(beacon.channel)});
    return frame;
}

QString writeCapture(const QTemporaryDir& dir, const std::vector<Beacon>& beacons)
{
    const QString path = dir.filePath(QStringLiteral("replay.pcap"));
    pcap_t* dead = pcap_open_dead(LinkTypeIeee80211, 65535);
    pcap_dumper_t* dumper = pcap_dump_open(dead, QFile::encodeName(path).constData());
    for (const Beacon& beacon : beacons) {
        const auto frame = beaconFrame(beacon);
        pcap_pkthdr header{};
        const auto micros = static_cast<long>(beacon.seconds * 1e6);
        header.ts.tv_sec = 1'600'000'000 + micros / 1'000'000;
        header.ts.tv_usec = micros % 1'000'000;
        header.caplen = header.len = static_cast<bpf_u_int32>(frame.size());
        pcap_dump(reinterpret_cast<u_char*>(dumper), &header, frame.data());
    }
    pcap_dump_close(dumper);
    pcap_close(dead);
    return path;
}

// "ssid@channel" per network, in the order the scan returned them.
QStringList heard(const QList<platform::ScanResult>& networks)
{
    QStringList texts;
    for (const auto& network : networks)
        texts.append(QStringLiteral("%1@%2").arg(network.ssid).arg(network.channelNumber));
    return texts;
}

TEST(CaptureReplay, SlicesCaptureTimeKeepsTheLatestFramePerBssidAndRepeatsTheLastSlice)
{
    QTemporaryDir dir;
    const QString path = writeCapture(dir, {
        {0.0, 1, "a", 1}, {1.0, 2, "b", 6}, {4.9, 1, "a", 11},   // first slice: a moved to 11
        {20.0, 3, "c", 36}, {24.0, 3, "c", 40},                    // a silent gap is skipped
        {25.5, 1, "a", 1},
    });
    QString error;
    auto replay = CaptureReplayInterface::open(path, &error, 5s);
    ASSERT_TRUE(replay) << qPrintable(error);

    // A directed scan before any full scan takes the first slice, and does not move on.
    const auto directed = replay->scanForNetworksWithBSSID(QStringLiteral("02:00:00:00:00:02"));
    EXPECT_EQ(heard(directed.networks), QStringList{"b@6"});

    const std::vector<QStringList> expected{{"a@11", "b@6"}, {"c@40"}, {"a@1"}, {"a@1"}, {"a@1"}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto outcome = replay->scanForNetworksWithSSID({});
        EXPECT_FALSE(outcome.error);
        EXPECT_EQ(heard(outcome.networks), expected[i]) << "scan " << i;
        EXPECT_EQ(heard(replay->cachedScanResults()), expected[i]);
    }
    EXPECT_TRUE(replay->scanForNetworksWithSSID("b").networks.isEmpty());
    EXPECT_EQ(heard(replay->scanForNetworksWithSSID("a").networks), QStringList{"a@1"});

    // A directed scan by name also stays on the current slice.
    auto fresh = CaptureReplayInterface::open(path, &error, 5s);
    ASSERT_TRUE(fresh);
    EXPECT_EQ(heard(fresh->scanForNetworksWithSSID("b").networks), QStringList{"b@6"});
    EXPECT_EQ(heard(fresh->scanForNetworksWithSSID({}).networks), (QStringList{"a@11", "b@6"}));
}

TEST(CaptureReplay, BehavesAsAnUnassociatedInterfaceThatCannotJoin)
{
    QTemporaryDir dir;
    QString error;
    auto replay = CaptureReplayInterface::open(writeCapture(dir, {{0.0, 1, "a", 1}}), &error);
    ASSERT_TRUE(replay) << qPrintable(error);
    CaptureReplayClient client(replay);
    EXPECT_EQ(client.interfaceWithName(client.interfaceNames().value(0)), replay);
    EXPECT_EQ(client.statusText(), QStringLiteral("Replaying capture ") + replay->capturePath());
    EXPECT_EQ(client.toolBackendArguments(), (QStringList{"--capture", replay->capturePath()}));

    EXPECT_TRUE(replay->snapshot().powerOn && replay->snapshot().bssid.isEmpty());
    EXPECT_TRUE(replay->setPower(false));
    const auto joined = replay->associateToNetwork({}, QStringLiteral("secret"));
    ASSERT_TRUE(joined);
    EXPECT_TRUE(joined->description.contains(QStringLiteral("replayed capture")));
    EXPECT_TRUE(replay->startIBSSModeWithSSID("x", 0, 11, {}));
}

TEST(CaptureReplay, ReplaysARealCaptureWithRadiotapSignal)
{
    if (!QFile::exists(kFragattacks))
        GTEST_SKIP() << "no shared capture at " << qPrintable(kFragattacks);

    // Reference slicing straight from the reader: slices start at the first unplayed frame.
    QString error;
    auto reader = CaptureReader::open(kFragattacks, &error);
    ASSERT_TRUE(reader) << qPrintable(error);
    std::vector<std::map<QString, int>> expected;
    std::int64_t sliceEnd = 0;
    for (BeaconFrame frame; reader->next(frame) == ReadStatus::Frame;) {
        if (expected.empty() || frame.timestampUs >= sliceEnd) {
            expected.emplace_back();
            sliceEnd = frame.timestampUs + 2'000'000;
        }
        expected.back()[scan::ScannerUtils::normalizeMAC(frame.facts.bssid)] = frame.facts.signalDbm;
    }
    ASSERT_GE(expected.size(), 3u);

    auto replay = CaptureReplayInterface::open(kFragattacks, &error, 2s);
    ASSERT_TRUE(replay) << qPrintable(error);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        std::map<QString, int> signalOf;
        for (const auto& network : replay->scanForNetworksWithSSID({}).networks) {
            EXPECT_LT(network.rssiValue, 0);
            EXPECT_GT(network.channelNumber, 0);
            signalOf[scan::ScannerUtils::normalizeMAC(network.bssid)] = network.rssiValue;
        }
        EXPECT_EQ(signalOf, expected[i]) << "slice " << i;
    }
    const auto first = replay->scanForNetworksWithBSSID(QStringLiteral("bc:ae:c5:88:8c:20")).networks;
    ASSERT_EQ(first.size(), 1);
    EXPECT_EQ(first[0].ssid, QStringLiteral("testnetwork"));
}

} // namespace
} // namespace platform::capture
