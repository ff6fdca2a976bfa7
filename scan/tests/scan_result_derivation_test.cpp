#include "scan/scan_result_derivation.h"
#include "scan/scaned_result_info.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>

using namespace platform;

namespace {

QByteArray ie(int id, const QByteArray& body)
{
    return QByteArray(1, static_cast<char>(id)) + QByteArray(1, static_cast<char>(body.size())) + body;
}

QByteArray ie(int id, std::initializer_list<int> body)
{
    QByteArray bytes;
    for (int b : body)
        bytes.append(static_cast<char>(b));
    return ie(id, bytes);
}

// RSN (ID 48) or WPA vendor element with one CCMP pairwise suite and the given AKM types.
QByteArray security(bool rsn, std::initializer_list<int> akms)
{
    const QByteArray oui = QByteArray::fromHex(rsn ? "000fac" : "0050f2");
    QByteArray body = rsn ? QByteArray() : oui + '\x01';
    body += QByteArray::fromHex("0100") + oui + '\x04' + QByteArray::fromHex("0100") + oui + '\x04';
    body += static_cast<char>(akms.size()) + QByteArray(1, '\0');
    for (int akm : akms)
        body += oui + static_cast<char>(akm);
    return ie(rsn ? 48 : 221, body);
}

ScanResult derive(const QByteArray& elements, std::optional<int> frequency = {}, std::uint16_t capability = 0)
{
    return scan::deriveScanResult(scan::RawBssFacts{"00:11:22:33:44:55", frequency, -50, 0, capability, 100, elements});
}

} // namespace

TEST(Derivation, SsidText)
{
    const std::pair<QByteArray, QString> cases[] = {
        {QByteArray(), ""},
        {QByteArray(9, '\0'), ""},
        {QByteArray::fromHex("436166c3a9"), QStringLiteral(u"Café")},
        {QByteArray::fromHex("b2e2cad4"), QStringLiteral(u"\u00B2\u00E2\u00CA\u00D4")},  // GBK
        {QByteArray::fromHex("c0af"), QStringLiteral(u"\u00C0\u00AF")},                   // overlong
        {QByteArray::fromHex("eda080"), QStringLiteral(u"\u00ED\u00A0\u0080")},            // surrogate
        {QByteArray::fromHex("e282"), QStringLiteral(u"\u00E2\u0082")},                    // cut short
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(scan::ssidText(bytes), text) << bytes.toHex().constData();
        EXPECT_FALSE(scan::ssidText(bytes).isNull());
    }
    const ScanResult first = derive(ie(0, {'a', 'b'}) + ie(0, {'c'}));
    EXPECT_EQ(first.ssidData, QByteArray("ab"));
    EXPECT_EQ(first.ssid, "ab");
}

TEST(Derivation, ChannelAndBand)
{
    struct Case { QByteArray elements; std::optional<int> frequency; int channel; ChannelBand band; };
    const Case cases[] = {
        {ie(3, {6}) + ie(61, {11, 0}), 2462, 6, ChannelBand::Band2GHz},
        {ie(61, {149, 0}), {}, 149, ChannelBand::Band5GHz},
        {ie(3, {0}) + ie(61, {0, 0}), 2437, 6, ChannelBand::Band2GHz},
        {{}, 2484, 14, ChannelBand::Band2GHz},
        {{}, 5180, 36, ChannelBand::Band5GHz},
        {{}, 4920, 184, ChannelBand::Band5GHz},
        {{}, 2413, 0, ChannelBand::Band2GHz},
        {{}, 5955, 0, ChannelBand::Unknown},
    };
    for (const Case& c : cases) {
        const ScanResult result = derive(c.elements, c.frequency);
        EXPECT_EQ(result.channelNumber, c.channel) << c.elements.toHex().constData() << " " << c.frequency.value_or(0);
        EXPECT_EQ(result.channelBand, c.band) << c.elements.toHex().constData() << " " << c.frequency.value_or(0);
    }
}

TEST(Derivation, ChannelWidth)
{
    const std::pair<QByteArray, ChannelWidthCode> cases[] = {
        {{}, ChannelWidthCode::Width20MHz},
        {ie(61, {6, 0x07}), ChannelWidthCode::Width40MHz},
        {ie(61, {6, 0x05}), ChannelWidthCode::Width40MHz},
        {ie(61, {6, 0x03}), ChannelWidthCode::Width20MHz},  // offset without the width bit
        {ie(61, {6, 0x06}), ChannelWidthCode::Width20MHz},  // width bit, reserved offset
        {ie(61, {36, 0x05}) + ie(192, {0, 0, 0}), ChannelWidthCode::Width40MHz},
        {ie(192, {1, 42, 0}), ChannelWidthCode::Width80MHz},
        {ie(192, {1, 42, 46}), ChannelWidthCode::Width80MHz},
        {ie(192, {1, 50, 42}), ChannelWidthCode::Width160MHz},
        {ie(192, {1, 42, 155}), ChannelWidthCode::Width160MHz},  // 80+80
        {ie(192, {2, 50, 0}), ChannelWidthCode::Width160MHz},
        {ie(192, {1, 42}), ChannelWidthCode::Width20MHz},  // too short to read
    };
    for (const auto& [elements, width] : cases)
        EXPECT_EQ(derive(elements).channelWidth, width) << elements.toHex().constData();
}

// A beacon with two HT Operation elements that disagree: the width the derivation reports and
// the secondary-channel offset the parser keeps must both come from the last one.
TEST(Derivation, RepeatedHtOperationUsesTheLastForWidthAndOffset)
{
    const struct { QByteArray elements; ChannelWidthCode width; std::int64_t offset; } cases[] = {
        {ie(61, {6, 0x07, 0}) + ie(61, {6, 0x04, 0}), ChannelWidthCode::Width20MHz, 0},
        {ie(61, {6, 0x04, 0}) + ie(61, {6, 0x05, 0}), ChannelWidthCode::Width40MHz, 1},
        {ie(61, {6, 0x05, 0}) + ie(61, {6, 0x07, 0}), ChannelWidthCode::Width40MHz, -1},
    };
    for (const auto& c : cases) {
        const ScanResult result = derive(c.elements);
        EXPECT_EQ(result.channelWidth, c.width) << c.elements.toHex().constData();
        scan::ScanedResultInfo record;
        record.channelWidth = result.channelWidth == ChannelWidthCode::Width40MHz ? 40 : 20;
        record.parseInformationElement(c.elements);
        EXPECT_EQ(record.channelOffset, c.offset) << c.elements.toHex().constData();
    }
}

TEST(Derivation, PhyModesAndCountry)
{
    const QByteArray cck = ie(1, {0x82, 0x84, 0x8b, 0x96});
    const std::pair<QByteArray, std::uint32_t> cases[] = {
        {ie(3, {1}) + cck, PhyB},
        {ie(3, {1}) + cck + ie(50, {0x0c, 0x6c}), PhyB | PhyG},
        {ie(3, {1}) + ie(1, {0x8c, 0x12}) + ie(45, {0}), PhyG | PhyN},
        {ie(3, {36}) + ie(1, {0x8c, 0x12}) + ie(45, {0}) + ie(191, {0}), PhyA | PhyN | PhyAC},
        {ie(3, {1}) + ie(1, {0xff}), 0},
    };
    for (const auto& [elements, modes] : cases)
        EXPECT_EQ(derive(elements).phyModes, modes) << elements.toHex().constData();

    EXPECT_EQ(derive(ie(7, {'U', 'S', 0x20, 1, 11, 30})).countryCode, "US");
    EXPECT_TRUE(derive(ie(7, {'U'})).countryCode.isNull());
    EXPECT_TRUE(derive({}).countryCode.isNull());
}

TEST(Derivation, SecurityMatrix)
{
    constexpr std::uint16_t privacy = 0x0010;
    struct Case { const char* name; QByteArray elements; std::uint16_t capability; int mode; };
    const Case cases[] = {
        {"open", {}, 0, SecurityNone},
        {"wep", {}, privacy, SecurityWEP},
        {"wpa psk", security(false, {2}), privacy, SecurityWPAPersonal},
        {"mixed psk", security(false, {2}) + security(true, {2}), privacy, SecurityWPAPersonalMixed},
        {"rsn psk-sha256", security(true, {6}), privacy, SecurityWPA2Personal},
        {"sae transition", security(true, {2, 8}), privacy, SecurityPersonal},
        {"wpa eap", security(false, {1}), privacy, SecurityWPAEnterprise},
        {"mixed eap", security(false, {1}) + security(true, {1}), privacy, SecurityWPAEnterpriseMixed},
        {"rsn ft-eap", security(true, {3}), privacy, SecurityWPA2Enterprise},
        {"suite-b", security(true, {12}), privacy, SecurityEnterprise},
        {"rsn owe", security(true, {18}), privacy, SecurityWPA2Personal},
        {"rsn cut before akm", ie(48, {1, 0, 0x00, 0x0f, 0xac, 4}), privacy, SecurityWPA2Personal},
        {"wmm is not wpa", ie(221, {0x00, 0x50, 0xf2, 2, 1, 1}), 0, SecurityNone},
        {"rsn past the end", ie(3, {11}) + QByteArray::fromHex("30ff0100"), privacy, SecurityWEP},
    };
    for (const Case& c : cases) {
        const ScanResult result = derive(c.elements, {}, c.capability);
        EXPECT_EQ(result.securityMode, c.mode) << c.name;
        EXPECT_EQ(result.secured, c.mode != SecurityNone) << c.name;
    }
}

// The sanitizer build turns any out-of-bounds read here into a failure.
TEST(Derivation, MalformedElementsAreSafe)
{
    const QByteArray full = ie(0, {'x'}) + ie(3, {6}) + ie(61, {6, 7, 0}) + ie(192, {1, 42, 0})
                            + security(false, {2}) + security(true, {2, 1});
    for (qsizetype n = 0; n <= full.size(); ++n)
        derive(full.left(n), {}, 0x0010);

    QByteArray hugeCount = security(true, {2});
    hugeCount[8] = hugeCount[9] = static_cast<char>(0xff);  // pairwise count
    EXPECT_EQ(derive(hugeCount, {}, 0x0010).securityMode, SecurityWPA2Personal);
}
