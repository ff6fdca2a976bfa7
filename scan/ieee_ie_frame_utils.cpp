#include "scan/ieee_ie_frame_utils.h"

#include "scan/hex_digit.h"

#include <array>
#include <utility>

namespace scan {

namespace {

const char* const htPhySelector =
    "BSS requires support for mandatory features of HT PHY (IEEE 802.11 - Clause 20)";

// Every rate byte is looked up once per beacon, so the texts are built once and shared.
std::array<QString, 256> makeRateTable()
{
    static constexpr std::pair<unsigned char, const char*> rates[] = {
        {0x02, "1"},  {0x03, "1.5"}, {0x04, "2"},  {0x05, "2.5"}, {0x06, "3"},
        {0x09, "4.5"}, {0x0B, "5.5"}, {0x0C, "6"}, {0x12, "9"},  {0x16, "11"},
        {0x18, "12"}, {0x1B, "13.5"}, {0x24, "18"}, {0x2C, "22"}, {0x30, "24"},
        {0x36, "27"}, {0x42, "33"},  {0x48, "36"}, {0x60, "48"}, {0x6C, "54"},
    };
    std::array<QString, 256> table;
    for (const auto& [byte, text] : rates) {
        table[byte] = QString::fromLatin1(text);
        table[byte | 0x80U] = table[byte] + QStringLiteral("(B)");
    }
    table[0xFF] = QString::fromLatin1(htPhySelector);
    return table;
}

}  // namespace

const QString& IEEE_IE_FrameUtils::bitRateForByte(unsigned char byte)
{
    static const std::array<QString, 256> table = makeRateTable();
    return table[byte];
}

QString IEEE_IE_FrameUtils::getBitRate(const QString& hexByte)
{
    // Keys are exactly the "%02X" texts, so lower-case or longer texts name no rate.
    if (hexByte.size() != 2 || hexByte[0].isLower() || hexByte[1].isLower()) {
        return {};
    }
    const int high = hexDigitValue(hexByte[0]);
    const int low = hexDigitValue(hexByte[1]);
    if (high < 0 || low < 0) {
        return {};
    }
    return bitRateForByte(static_cast<unsigned char>(high * 16 + low));
}

QString IEEE_IE_FrameUtils::resolveCipherType(int suiteType)
{
    switch (suiteType) {
    case 0:
        return QStringLiteral("WEP-40/WEP-104");
    case 1:
        return QStringLiteral("WEP-40");
    case 2:
        return QStringLiteral("TKIP");
    case 4:
        return QStringLiteral("CCMP");
    case 5:
        return QStringLiteral("WEP-104");
    case 6:
        return QStringLiteral("BIP");
    case 7:
        return QStringLiteral("Group addressed traffic not allowed");
    default:
        return QStringLiteral("Reserved");
    }
}

} // namespace scan
