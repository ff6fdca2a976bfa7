#include "scan/scanner_utils.h"

#include "scan/hex_digit.h"

#include "core/units.h"
#include "platform/api/scan_result.h"
#include "scan/date_format.h"
#include "scan/number_format.h"
#include "scan/oui_map.h"

#include <QLocale>

#include <array>

namespace scan {

namespace {

QString emptyText() { return QStringLiteral(""); }

// Both interface generations number their modes from 0; codes outside a table have no text.
template <std::size_t N>
QString textAt(const std::array<const char*, N>& table, int code)
{
    if (code < 0 || static_cast<std::size_t>(code) >= N) {
        return {};
    }
    return QString::fromLatin1(table[static_cast<std::size_t>(code)]);
}

constexpr std::array<const char*, 6> olderPhyModes{"a", "b", "g", "n", "", ""};
constexpr std::array<const char*, 6> currentPhyModes{"None", "a", "b", "g", "n", "ac"};
constexpr std::array<const char*, 6> olderSupportedPhyModes{"a/", "b/", "g/", "n", "", ""};
constexpr std::array<const char*, 6> currentSupportedPhyModes{"None/", "a/", "b/", "g/", "n/", "ac/"};

constexpr std::array<const char*, 8> olderSecurityModes{"Open", "WEP", "WPA Personal", "WPA2 Personal",
    "802.1X WEP", "WPA Enterprise", "WPA2 Enterprise", "WiFi Protected Setup"};
constexpr std::array<const char*, 11> currentSecurityModes{"Open", "WEP", "WPA Personal",
    "WPA2 Personal Mixed", "WPA2 Personal", "Personal", "802.1X WEP", "WPA Enterprise", "Unknown",
    "WPA2 Enterprise", "Enterprise"};

constexpr std::array<const char*, 4> olderOpModes{"Infrastructure", "IBSS", "Host Access Point", "Monitor Mode"};
constexpr std::array<const char*, 4> currentOpModes{"None", "Infrastructure", "IBSS", "Host Access Point"};

} // namespace

void ScannerUtils::initOui() { OuiMap::shared().ensureLoaded(); }

void ScannerUtils::loadOuiFrom(const QString& path) { OuiMap::shared().loadFrom(path); }

QString ScannerUtils::vendorNameForMAC(const QString& mac)
{
    initOui();
    if (mac.isEmpty()) {
        return emptyText();
    }
    const QString vendor = OuiMap::shared().vendorForKey(normalizeMAC(mac).left(8));
    return vendor.isNull() ? QStringLiteral("Unknown") : vendor;
}

QString ScannerUtils::normalizeMAC(const QString& mac)
{
    if (mac.isEmpty()) {
        return emptyText();
    }
    // Every BSSID of every scan passes through here, so the common shapes avoid Qt's general
    // case mapping: an already normalised MAC is handed back shared, an ASCII one is
    // upper-cased in the same pass that pads it.
    qsizetype pads = 0;
    bool changes = false;
    bool ascii = true;
    qsizetype partLength = 0;
    for (qsizetype i = 0; i <= mac.size(); ++i) {
        if (i == mac.size() || mac[i] == QLatin1Char(':')) {
            pads += partLength == 1 ? 1 : 0;
            partLength = 0;
            continue;
        }
        const char16_t u = mac[i].unicode();
        ascii = ascii && u < 0x80;
        changes = changes || (u >= u'a' && u <= u'z');
        ++partLength;
    }
    if (pads == 0 && !changes && ascii) {
        return mac;
    }

    QString normalized(mac.size() + pads, Qt::Uninitialized);
    QChar* out = normalized.data();
    partLength = 0;
    for (qsizetype i = 0; i <= mac.size(); ++i) {
        if (i < mac.size() && mac[i] != QLatin1Char(':')) {
            ++partLength;
            continue;
        }
        if (partLength == 1) {
            *out++ = QLatin1Char('0');
        }
        for (qsizetype j = i - partLength; j < i; ++j) {
            const char16_t u = mac[j].unicode();
            *out++ = QChar(u >= u'a' && u <= u'z' ? static_cast<char16_t>(u - (u'a' - u'A')) : u);
        }
        if (i < mac.size()) {
            *out++ = QLatin1Char(':');
        }
        partLength = 0;
    }
    return ascii ? normalized : normalized.toUpper();
}

QString ScannerUtils::shortMAC(const QString& mac) { return normalizeMAC(mac).mid(8); }

QString ScannerUtils::normalizeString(const QString& text)
{
    QString kept;
    kept.reserve(text.size());
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if ((u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9')) {
            kept += c;
        }
    }
    return kept;
}

bool ScannerUtils::hasValue(const QString& text) { return !text.trimmed().isEmpty(); }

QString ScannerUtils::stringForLastSeenDate(const QDateTime& date)
{
    return stringForLastSeenDate(date, QDateTime::currentDateTimeUtc());
}

QString ScannerUtils::stringForLastSeenDate(const QDateTime& date, const QDateTime& now)
{
    if (!date.isValid() || !now.isValid()) {
        return {};
    }
    const double secondsSinceNow = static_cast<double>(now.msecsTo(date)) / 1000.0;
    if (secondsSinceNow >= -7.0) {
        return QStringLiteral("now");
    }
    return DateFormat::relativePhrase(-secondsSinceNow);
}

QString ScannerUtils::formatDate(const QString& pattern, const QDateTime& date)
{
    return DateFormat::format(pattern, date);
}

QString ScannerUtils::stringForChannelBond(int channel)
{
    return core::is24GhzChannel(channel) ? QStringLiteral("2.4 GHz") : QStringLiteral("5 GHz");
}

double ScannerUtils::channelBondForChannel(int channel) { return core::bandGhz(core::ChannelBand::Unknown, channel); }

double ScannerUtils::intForChannelBond(int channel) { return core::bandGhz(core::ChannelBand::Unknown, channel); }

QString ScannerUtils::stringForPHYMode(int code, core::InterfaceGeneration generation)
{
    const QString text = textAt(core::isOSSnowLeopard(generation) ? olderPhyModes : currentPhyModes, code);
    return text.isNull() ? emptyText() : text;
}

QString ScannerUtils::getSupportedPHYModeString(const platform::ScanResult& network, core::InterfaceGeneration generation)
{
    const auto& table = core::isOSSnowLeopard(generation) ? olderSupportedPhyModes : currentSupportedPhyModes;
    // Empty rather than null: a network with no known mode still has a (blank) mode text.
    QString modes(QLatin1String(""));
    for (int code = 0; code < static_cast<int>(table.size()); ++code) {
        if (network.supportsPHYMode(code, generation)) {
            modes += QLatin1String(table[static_cast<std::size_t>(code)]);
        }
    }
    if (modes.endsWith(QLatin1Char('/'))) {
        modes.chop(1);
    }
    return modes;
}

int ScannerUtils::securityModeForString(const QString& text)
{
    // Names map to the oldest generation's numbering whichever generation is active; callers
    // rely on that mismatch.
    for (std::size_t code = 1; code <= 6; ++code) {
        if (text == QLatin1String(olderSecurityModes[code])) {
            return static_cast<int>(code);
        }
    }
    return 0;
}

QString ScannerUtils::stringForSecurityMode(int code, core::InterfaceGeneration generation)
{
    if (code == -1) {
        return QStringLiteral("Secured");
    }
    if (core::isOSSnowLeopard(generation)) {
        return textAt(olderSecurityModes, code);
    }
    const QString text = textAt(currentSecurityModes, code);
    return text.isNull() ? QStringLiteral("Unknown") : text;
}

QString ScannerUtils::stringForOpMode(int code, core::InterfaceGeneration generation)
{
    return textAt(core::isOSSnowLeopard(generation) ? olderOpModes : currentOpModes, code);
}

QString ScannerUtils::formatNumber(float value) { return NumberFormat::format(value); }

int ScannerUtils::getIntData(const QByteArray& bytes, int position)
{
    if (position < 0 || position >= bytes.size()) {
        return 0;
    }
    return static_cast<unsigned char>(bytes[position]);
}

QString ScannerUtils::toBinary(std::uint64_t value, int digits)
{
    if (value <= 1) {
        return value == 1 ? QStringLiteral("1") : QStringLiteral("0");
    }
    QString bits;
    for (; value > 0; value >>= 1) {
        bits.prepend((value & 1u) != 0 ? QLatin1Char('1') : QLatin1Char('0'));
    }
    if (digits > 0) {
        bits = bits.rightJustified(qsizetype{4} * digits, QLatin1Char('0'));
    }
    return bits;
}

QString ScannerUtils::stringFromHexString(const QString& hex)
{
    if (hex.size() % 2 != 0) {
        return {};
    }
    QString text;
    text.reserve(hex.size() / 2);
    for (qsizetype i = 0; i < hex.size(); i += 2) {
        // Like scanf's "%x" over the pair: leading hex digits count, a non-digit pair gives 0.
        int byte = 0;
        for (qsizetype j = i; j < i + 2; ++j) {
            const int digit = hexDigitValue(hex[j]);
            if (digit < 0) {
                break;
            }
            byte = byte * 16 + digit;
        }
        text += QChar(static_cast<char16_t>(byte));
    }
    return text;
}

QByteArray ScannerUtils::NSDataFromHexString(const QString& hex)
{
    QByteArray bytes;
    bytes.reserve(hex.size() / 2);
    int high = -1;
    for (const QChar c : hex.toUpper()) {
        const int digit = hexDigitValue(c);
        if (digit < 0) {
            continue;
        }
        if (high < 0) {
            high = digit;
        } else {
            bytes.append(static_cast<char>(high * 16 + digit));
            high = -1;
        }
    }
    return bytes;
}

} // namespace scan
