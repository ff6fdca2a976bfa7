#pragma once

#include "core/interface_generation.h"
#include "core/user_settings.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <cstdint>

namespace platform {
struct ScanResult;
}

namespace scan {

class ScanedResultInfo;

// Stateless helpers shared by the whole program: vendor lookup, MAC and name normalisation,
// the texts of platform mode codes, hex and bit-string conversion, number and date formatting,
// user settings and the interface generation test. Thread-safe.
class ScannerUtils {
public:
    ScannerUtils() = delete;

    static void initOui();
    // Loads the vendor table from another file (tests); a missing file gives an empty table.
    static void loadOuiFrom(const QString& path);
    static QString vendorNameForMAC(const QString& mac);
    static QString normalizeMAC(const QString& mac);
    static QString shortMAC(const QString& mac);
    static QString normalizeString(const QString& text);
    static bool hasValue(const QString& text);

    static QString stringForLastSeenDate(const QDateTime& date);
    // Same, measured against a given "now" (tests and callers that already hold the time).
    static QString stringForLastSeenDate(const QDateTime& date, const QDateTime& now);
    // Unicode date pattern in the local time zone: "YYYY" is the week-based year, "hh" the
    // 12-hour clock, "SSSS" fractional seconds.
    static QString formatDate(const QString& pattern, const QDateTime& date);

    static QString stringForChannelBond(int channel);
    static double channelBondForChannel(int channel);
    static double intForChannelBond(int channel);

    // The mode tables differ between interface generations: the caller passes its backend's.
    static QString stringForPHYMode(int code, core::InterfaceGeneration generation);
    static QString getSupportedPHYModeString(const platform::ScanResult& network, core::InterfaceGeneration generation);
    static int securityModeForString(const QString& text);
    // Null QString where the table of the generation has no text.
    static QString stringForSecurityMode(int code, core::InterfaceGeneration generation);
    static QString stringForOpMode(int code, core::InterfaceGeneration generation);

    static bool isOSSnowLeopard(core::InterfaceGeneration generation) { return core::isOSSnowLeopard(generation); }

    // Decimal, at most one fractional digit, "." separator, no grouping, half-even rounding.
    static QString formatNumber(float value);

    // MCS index of the interface's transmit rate, using the record's short-GI flags.
    static int getMCSIndexUsingTXRate(double txRateMbps, int channelWidthMhz, const ScanedResultInfo& networkInfo);

    static QVariant getUserSettingForKey(const core::UserSettings& settings, const QString& key)
    {
        return settings.value(key);
    }
    static void setUserSetting(core::UserSettings& settings, const QVariant& value, const QString& key)
    {
        settings.setValue(key, value);
    }

    static int getIntData(const QByteArray& bytes, int position);
    static QString toBinary(std::uint64_t value, int digits);
    // Null QString for odd-length input; each byte becomes the character of the same code point.
    static QString stringFromHexString(const QString& hex);
    static QByteArray NSDataFromHexString(const QString& hex);
};

} // namespace scan
