#include "platform/capture/capture_reader.h"
#include "platform/capture/packet_decoder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <zlib.h>

#include <memory>
#include <set>
#include <vector>

namespace platform::capture {
namespace {

using Bytes = std::vector<std::uint8_t>;

const QString kCaptureDir = QStringLiteral(SKYVANE_SHARED_DIR "/captures");
const QByteArray kSsidElement("\x00\x02" "ab", 4);
constexpr std::uint32_t kFlags = 1u << 1, kChannel = 1u << 3, kSignal = 1u << 5, kNoise = 1u << 6;
constexpr std::uint32_t kRadiotapNs = 1u << 29, kVendorNs = 1u << 30, kExt = 1u << 31;

void appendLe(Bytes& out, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

// A management frame from BSSID 02:00:00:00:00:01 whose only element is the SSID "ab".
Bytes managementFrame(std::uint8_t frameControl = 0x80, std::uint8_t flags = 0)
{
    Bytes frame{frameControl, flags, 0, 0};
    frame.insert(frame.end(), 12, 0xff);
    frame.insert(frame.end(), {0x02, 0, 0, 0, 0, 0x01, 0, 0});
    frame.insert(frame.end(), (flags & 0x80) ? 12 : 8, 0);  // HT Control when ordered, timestamp
    appendLe(frame, 100, 2);
    appendLe(frame, 0x0431, 2);
    frame.insert(frame.end(), kSsidElement.begin(), kSsidElement.end());
    return frame;
}

Bytes withFcs(Bytes frame)
{
    appendLe(frame, static_cast<std::uint32_t>(crc32_z(0, frame.data(), frame.size())), 4);
    return frame;
}

Bytes withHeader(Bytes header, const Bytes& frame)
{
    header.insert(header.end(), frame.begin(), frame.end());
    return header;
}

Bytes radiotapPacket(const std::vector<std::uint32_t>& presentWords, const Bytes& fields, const Bytes& frame)
{
    Bytes header{0, 0};
    appendLe(header, static_cast<std::uint32_t>(4 + presentWords.size() * 4 + fields.size()), 2);
    for (std::uint32_t word : presentWords)
        appendLe(header, word, 4);
    header.insert(header.end(), fields.begin(), fields.end());
    return withHeader(header, frame);
}

std::optional<scan::RawBssFacts> parse(int linkType, const Bytes& packet)
{
    return parsePacket(linkType, packet.data(), packet.size());
}

TEST(CaptureRadiotap, WalksBitmapsNamespacesAndAlignment)
{
    // Fields are laid out by hand, padding included.
    struct Case { const char* name; std::vector<std::uint32_t> presentWords; Bytes fields; bool fcsAppended;
                  std::optional<int> frequencyMhz; int signalDbm; int noiseDbm; };
    const std::vector<Case> cases = {
        {"TSFT aligned to 8 after two bitmaps, Channel to 2 after Flags",
         {1u | kFlags | kChannel | kSignal | kNoise | kExt, 0},
         {0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 0x10, 0, 0x85, 0x09, 0xa0, 0x00, 0xd6, 0xa1}, true, 2437, -42, -95},
        {"vendor data skipped, bit numbers restart in the next radiotap namespace",
         {kFlags | kVendorNs | kExt, 0x3u | kRadiotapNs | kExt, kChannel | kSignal},
         {0x00, 0, 0x00, 0x11, 0x22, 0x07, 0x05, 0x00, 9, 9, 9, 9, 9, 0, 0x71, 0x16, 0x40, 0x01, 0xc4}, false,
         5745, -60, 0},
        {"first occurrence wins", {kSignal | kRadiotapNs | kExt, kSignal | kNoise}, {0xe2, 0xba, 0xa6}, false,
         std::nullopt, -30, -90},
        {"an unknown field hides the later ones", {kSignal | (1u << 25) | kRadiotapNs | kExt, kNoise},
         {0xe2, 0x00, 0xa6}, false, std::nullopt, -30, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Bytes frame = c.fcsAppended ? withFcs(managementFrame()) : managementFrame();
        const auto facts = parse(LinkTypeRadiotap, radiotapPacket(c.presentWords, c.fields, frame));
        ASSERT_TRUE(facts);
        EXPECT_EQ(facts->bssid, QStringLiteral("02:00:00:00:00:01"));
        EXPECT_EQ(facts->informationElements, kSsidElement);
        EXPECT_EQ(facts->frequencyMhz, c.frequencyMhz);
        EXPECT_EQ(facts->signalDbm, c.signalDbm);
        EXPECT_EQ(facts->noiseDbm, c.noiseDbm);
    }
}

TEST(CaptureManagementFrame, DecodesBeaconsAndProbeResponsesOnlyWithinBounds)
{
    Bytes badCrc = withFcs(managementFrame());
    badCrc.back() ^= 1;
    Bytes prismHeader(144, 0);
    prismHeader[4] = 144;
    Bytes prismTooLong = withHeader(prismHeader, managementFrame());
    prismTooLong[5] = 0xff;
    const QByteArray ssidAndBadCrc = kSsidElement + QByteArray(reinterpret_cast<const char*>(badCrc.data() + badCrc.size() - 4), 4);
    const struct { const char* name; int linkType; Bytes packet; std::optional<QByteArray> elements; } cases[] = {
        {"probe response", LinkTypeIeee80211, managementFrame(0x50), kSsidElement},
        {"probe request", LinkTypeIeee80211, managementFrame(0x40), std::nullopt},
        {"data frame", LinkTypeIeee80211, managementFrame(0x08), std::nullopt},
        {"protocol version 1", LinkTypeIeee80211, managementFrame(0x81), std::nullopt},
        {"Ethernet", 1, managementFrame(), std::nullopt},
        {"HT Control after an ordered header", LinkTypeIeee80211, managementFrame(0x80, 0x80), kSsidElement},
        {"matching CRC stripped", LinkTypeIeee80211, withFcs(managementFrame()), kSsidElement},
        {"other CRC kept", LinkTypeIeee80211, badCrc, ssidAndBadCrc},
        {"Prism header skipped", LinkTypePrism, withHeader(prismHeader, withFcs(managementFrame())), kSsidElement},
        {"Prism header past the packet", LinkTypePrism, prismTooLong, std::nullopt},
        {"radiotap bitmaps past it_len", LinkTypeRadiotap, radiotapPacket({kExt}, {}, managementFrame()), std::nullopt},
        {"radiotap FCS flag", LinkTypeRadiotap,
         radiotapPacket({kFlags | kChannel | kExt, 0}, {0x10, 0, 0x85, 0x09, 0, 0}, withFcs(managementFrame())),
         kSsidElement},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto facts = parse(c.linkType, c.packet);
        EXPECT_EQ(facts ? std::optional(facts->informationElements) : std::nullopt, c.elements);
        if (facts) {
            EXPECT_EQ(std::tie(facts->beaconInterval, facts->capabilityInfo), std::tuple(100, 0x0431));
        }
        for (std::size_t length = 0; length < c.packet.size(); ++length) {
            // An exact-size copy of every prefix, so that ASan sees any read past the end.
            auto copy = std::make_unique<std::uint8_t[]>(length);
            std::copy_n(c.packet.begin(), length, copy.get());
            if (const auto prefix = parsePacket(c.linkType, copy.get(), length)) {
                EXPECT_LE(prefix->informationElements.size(), c.packet.size());
            }
        }
    }
    // The snapshot length cut the flagged FCS off: nothing left to strip.
    const Bytes snapped = radiotapPacket({kFlags}, {0x10}, managementFrame());
    const auto facts = decodePacket(LinkTypeRadiotap, snapped.data(), snapped.size(), snapped.size() + 4);
    EXPECT_EQ(facts->informationElements, kSsidElement);
}

bool elementChainEndsExactly(const QByteArray& elements)
{
    qsizetype offset = 0;
    while (offset + 2 <= elements.size())
        offset += 2 + static_cast<std::uint8_t>(elements[offset + 1]);
    return offset == elements.size();
}

TEST(CaptureReader, ReadsEveryCaptureLikeTshark)
{
    if (!QDir(kCaptureDir).exists())
        GTEST_SKIP() << "no shared captures at " << qPrintable(kCaptureDir);
    struct Case { const char* file; int linkType, frames, bssids; std::int64_t firstFrame; std::set<int> frequencies;
                  int withSignal, withNoise; bool elementsWellFormed; };
    const std::vector<Case> cases = {
        {"aircrack-ng_Chinese-SSID-Name.pcap", 105, 1, 1, 1, {}, 0, 0, true},
        {"aircrack-ng_MOM1.cap", 105, 1, 1, 1, {}, 0, 0, true},
        {"aircrack-ng_capture_wds-01.cap", 105, 1, 1, 3, {}, 0, 0, true},
        {"aircrack-ng_n-02.cap", 105, 10, 1, 1, {}, 0, 0, true},
        {"aircrack-ng_test1.pcap", 127, 7, 7, 1, {2437}, 3, 0, true},
        {"aircrack-ng_wps2.0.pcap", 105, 1, 1, 1, {}, 0, 0, true},
        {"fragattacks_ping_I_E_R_E-fromclient.pcapng", 127, 143, 5, 1, {2437, 2447, 2452, 2462}, 143, 0, true},
        {"pypacker_packets_prism.pcap", 119, 52, 8, 2, {}, 0, 0, true},
        {"tcpdump_ieee802.11_exthdr.pcap", 127, 6, 1, 3, {}, 0, 6, true},
        {"tcpdump_ieee802.11_meshid.pcap", 127, 2, 1, 1, {5745}, 2, 0, true},
        {"tcpdump_ieee802.11_parse_elements_oobr.pcap", 105, 1, 1, 1, {}, 0, 0, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        QString error;
        const auto reader = CaptureReader::open(kCaptureDir + QLatin1Char('/') + QLatin1String(c.file), &error);
        ASSERT_TRUE(reader) << qPrintable(error);
        EXPECT_EQ(reader->linkType(), c.linkType);
        BeaconFrame frame;
        int frames = 0, withSignal = 0, withNoise = 0;
        std::int64_t firstFrame = 0;
        std::set<QString> bssids;
        std::set<int> frequencies;
        ReadStatus status;
        while ((status = reader->next(frame)) == ReadStatus::Frame) {
            firstFrame = frames++ == 0 ? frame.frameNumber : firstFrame;
            bssids.insert(frame.facts.bssid);
            if (frame.facts.frequencyMhz)
                frequencies.insert(*frame.facts.frequencyMhz);
            withSignal += frame.facts.signalDbm != 0;
            withNoise += frame.facts.noiseDbm != 0;
            // Holds only once the FCS is gone, wherever the capture kept it.
            EXPECT_TRUE(!c.elementsWellFormed || elementChainEndsExactly(frame.facts.informationElements))
                << frame.frameNumber;
        }
        EXPECT_EQ(status, ReadStatus::End) << qPrintable(reader->errorString());
        EXPECT_EQ(std::tie(frames, firstFrame, frequencies, withSignal, withNoise),
                  std::tie(c.frames, c.firstFrame, c.frequencies, c.withSignal, c.withNoise));
        EXPECT_EQ(static_cast<int>(bssids.size()), c.bssids);
    }
}

TEST(CaptureReader, TruncatedFileDeliversItsFramesThenAnError)
{
    const QString path = kCaptureDir + QStringLiteral("/scapy_bad_rsn_parsing_overrides_ssid.pcap");
    if (!QFile::exists(path))
        GTEST_SKIP() << "no shared captures at " << qPrintable(kCaptureDir);
    const auto reader = CaptureReader::open(path, nullptr);
    ASSERT_TRUE(reader);
    BeaconFrame frame;
    ASSERT_EQ(reader->next(frame), ReadStatus::Frame);
    EXPECT_EQ(frame.facts.bssid, QStringLiteral("ec:17:2f:82:1e:29"));
    EXPECT_EQ(std::tie(frame.facts.frequencyMhz, frame.facts.signalDbm), std::tuple(2412, -50));
    EXPECT_EQ(reader->next(frame), ReadStatus::Error);
    EXPECT_TRUE(reader->errorString().contains(QLatin1String("truncated"))) << qPrintable(reader->errorString());
    EXPECT_EQ(reader->next(frame), ReadStatus::Error);
}

TEST(CaptureReader, OpenFailsWithAOneLineReason)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("capture.pcap"));
    const std::pair<std::optional<QByteArray>, const char*> cases[] = {
        {"this is not a capture file\nat all\n", "not a pcap or pcapng capture file"},
        {QByteArray(), "empty file"},
        // A pcap file header alone, declaring Ethernet frames.
        {QByteArray::fromHex("d4c3b2a1 0200 0400 00000000 00000000 ffff0000 01000000"),
         "unsupported link type 1 (EN10MB)"},
        {std::nullopt, "No such file"},
    };
    for (const auto& [content, reason] : cases) {
        QFile file(path);
        file.remove();
        ASSERT_TRUE(!content || (file.open(QIODevice::WriteOnly) && file.write(*content) == content->size()));
        file.close();
        QString error;
        EXPECT_FALSE(CaptureReader::open(path, &error)) << reason;
        EXPECT_TRUE(error.contains(QLatin1String(reason)) && !error.contains(QLatin1Char('\n'))) << qPrintable(error);
    }
}

} // namespace
} // namespace platform::capture
