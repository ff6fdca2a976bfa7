#include "scan/date_format.h"

#include <QTimeZone>

#include <unicode/reldatefmt.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <chrono>
#include <cmath>
#include <map>
#include <memory>

namespace scan {

namespace {

const icu::Locale& fixedLocale()
{
    static const icu::Locale locale("en_US_POSIX");
    return locale;
}

icu::UnicodeString toIcu(const QString& text)
{
    return icu::UnicodeString(reinterpret_cast<const char16_t*>(text.utf16()), static_cast<int32_t>(text.size()));
}

QString fromIcu(const icu::UnicodeString& text)
{
    return QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length());
}

std::unique_ptr<icu::TimeZone> zoneForId(const QByteArray& ianaId)
{
    std::unique_ptr<icu::TimeZone> zone;
    if (!ianaId.isEmpty()) {
        zone.reset(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(ianaId.toStdString())));
    }
    if (!zone || *zone == icu::TimeZone::getUnknown()) {
        // ICU reads the host setting afresh here, unlike its cached process default.
        zone.reset(icu::TimeZone::detectHostTimeZone());
    }
    return zone;
}

// The host's zone name. Without TZ, Qt finds it by looking at three files under /etc, which
// costs more than the formatting itself for every sensor line; so the answer is kept for a
// second, while a change of TZ is seen at once.
class HostZone {
public:
    QByteArray id()
    {
        const QByteArray variable = qgetenv("TZ");
        const auto now = std::chrono::steady_clock::now();
        if (!known_ || variable != variable_ || now - checked_ >= std::chrono::seconds(1)) {
            id_ = QTimeZone::systemTimeZoneId();
            variable_ = variable;
            checked_ = now;
            known_ = true;
        }
        return id_;
    }

private:
    bool known_ = false;
    QByteArray variable_;
    QByteArray id_;
    std::chrono::steady_clock::time_point checked_;
};

// Formatters are costly to build and not safe to share, so each thread keeps its own, rebuilt
// whenever the host's time zone changes.
struct FormatterCache {
    static constexpr std::size_t maxPatterns = 32;

    HostZone hostZone;
    QByteArray zoneId;
    bool zoneKnown = false;
    std::map<QString, std::unique_ptr<icu::SimpleDateFormat>> byPattern;

    icu::SimpleDateFormat* formatterFor(const QString& pattern)
    {
        const QByteArray currentZone = hostZone.id();
        if (!zoneKnown || currentZone != zoneId) {
            byPattern.clear();
            zoneId = currentZone;
            zoneKnown = true;
        }
        if (const auto it = byPattern.find(pattern); it != byPattern.end()) {
            return it->second.get();
        }
        UErrorCode status = U_ZERO_ERROR;
        auto formatter = std::make_unique<icu::SimpleDateFormat>(toIcu(pattern), fixedLocale(), status);
        if (U_FAILURE(status)) {
            return nullptr;
        }
        formatter->adoptTimeZone(zoneForId(zoneId).release());
        if (byPattern.size() >= maxPatterns) {
            byPattern.clear();
        }
        return byPattern.emplace(pattern, std::move(formatter)).first->second.get();
    }
};

struct RelativeFormatter {
    UErrorCode status = U_ZERO_ERROR;
    icu::RelativeDateTimeFormatter formatter{fixedLocale(), status};
};

struct Unit {
    double seconds;
    UDateRelativeUnit unit;
};

} // namespace

QString DateFormat::format(const QString& pattern, const QDateTime& date)
{
    if (!date.isValid()) {
        return {};
    }
    thread_local FormatterCache cache;
    icu::SimpleDateFormat* formatter = cache.formatterFor(pattern);
    if (formatter == nullptr) {
        return {};
    }
    icu::UnicodeString text;
    formatter->format(static_cast<UDate>(date.toMSecsSinceEpoch()), text);
    return fromIcu(text);
}

QString DateFormat::relativePhrase(double secondsAgo)
{
    static constexpr Unit units[] = {
        {365.0 * 86400.0, UDAT_RELATIVE_YEARS},
        {30.0 * 86400.0, UDAT_RELATIVE_MONTHS},
        {7.0 * 86400.0, UDAT_RELATIVE_WEEKS},
        {86400.0, UDAT_RELATIVE_DAYS},
        {3600.0, UDAT_RELATIVE_HOURS},
        {60.0, UDAT_RELATIVE_MINUTES},
        {1.0, UDAT_RELATIVE_SECONDS},
    };
    const double magnitude = std::isfinite(secondsAgo) ? std::fabs(secondsAgo) : 0.0;
    Unit chosen = units[std::size(units) - 1];
    for (const Unit& unit : units) {
        if (magnitude >= unit.seconds) {
            chosen = unit;
            break;
        }
    }

    thread_local RelativeFormatter relative;
    if (U_FAILURE(relative.status)) {
        return {};
    }
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString text;
    relative.formatter.format(std::floor(magnitude / chosen.seconds),
        secondsAgo >= 0.0 ? UDAT_DIRECTION_LAST : UDAT_DIRECTION_NEXT, chosen.unit, text, status);
    return U_FAILURE(status) ? QString() : fromIcu(text);
}

} // namespace scan
