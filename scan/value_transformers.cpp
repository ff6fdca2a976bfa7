#include "scan/value_transformers.h"

#include <QHash>
#include <QMetaType>

#include <cmath>
#include <limits>
#include <mutex>
#include <utility>

namespace scan {

namespace {

bool isAbsent(const QVariant& value) { return !value.isValid() || value.isNull(); }

bool isCharacterType(const QVariant& value)
{
    const int type = value.typeId();
    return type == QMetaType::Char || type == QMetaType::SChar || type == QMetaType::UChar;
}

// The value's own text; 8-bit flags would otherwise print as characters rather than numbers.
QString ownText(const QVariant& value)
{
    return isCharacterType(value) ? QString::number(value.toInt()) : value.toString();
}

// Fractions drop toward zero, as an integer read of a number does; out-of-range values saturate.
long long integerValue(const QVariant& value)
{
    const int type = value.typeId();
    if (type != QMetaType::Double && type != QMetaType::Float)
        return value.toLongLong();
    const double number = value.toDouble();
    if (std::isnan(number))
        return 0;
    if (number >= 9.2e18)
        return std::numeric_limits<long long>::max();
    if (number <= -9.2e18)
        return std::numeric_limits<long long>::min();
    return static_cast<long long>(number);
}

bool isUnknownFlag(const QVariant& value) { return isAbsent(value) || ownText(value) == QLatin1String("-1"); }

QString withUnit(long long number, const char* unit) { return QString::number(number) + QLatin1String(unit); }

struct Registry {
    std::mutex mutex;
    QHash<QString, std::shared_ptr<const ValueTransformer>> byName;
};

Registry& registry()
{
    static Registry instance;
    return instance;
}

} // namespace

QString NSBoolToStringTransformer::transformedValue(const QVariant& value) const
{
    if (isUnknownFlag(value))
        return QLatin1String("");
    return value.toBool() ? QStringLiteral("Yes") : QStringLiteral("No");
}

QString NSBoolToEnableDIsableTransformer::transformedValue(const QVariant& value) const
{
    if (isUnknownFlag(value))
        return QLatin1String("");
    return value.toBool() ? QStringLiteral("Enabled") : QStringLiteral("Disabled");
}

QString SignalToStringTransformer::transformedValue(const QVariant& value) const
{
    // 0 dBm is what the service reports when it measured nothing.
    if (isAbsent(value) || integerValue(value) == 0)
        return QLatin1String("");
    return withUnit(integerValue(value), " dBm");
}

QString ChannelToStringTransformer::transformedValue(const QVariant& value) const
{
    if (isAbsent(value) || integerValue(value) == 0)
        return QLatin1String("");
    return withUnit(integerValue(value), " MHz");
}

QString SpeedToStringTransformer::transformedValue(const QVariant& value) const
{
    // The rate's own text keeps a basic-rate marker such as "54(B)".
    if (isAbsent(value))
        return QLatin1String("");
    return ownText(value) + QLatin1String(" Mbps");
}

QString ChannelBandTransformer::transformedValue(const QVariant& value) const
{
    if (isAbsent(value) || value.toDouble() == 0.0)
        return QLatin1String("");
    return ownText(value) + QLatin1String(" GHz");
}

QString SNRToStringTransformer::transformedValue(const QVariant& value) const
{
    if (isAbsent(value) || integerValue(value) < 1)
        return QLatin1String("");
    return withUnit(integerValue(value), " dB");
}

QString NumberTransformer::transformedValue(const QVariant& value) const
{
    if (isAbsent(value) || integerValue(value) < 1)
        return QLatin1String("");
    return ownText(value);
}

QString ChannelUtilizationTransformer::transformedValue(const QVariant& value) const
{
    // The table hides 0 % like an unknown load; only the export prints it.
    if (isAbsent(value) || integerValue(value) < 1)
        return QLatin1String("");
    return withUnit(integerValue(value), "%");
}

void ValueTransformerRegistry::setValueTransformer(std::shared_ptr<const ValueTransformer> transformer,
                                                   const QString& name)
{
    Registry& table = registry();
    const std::lock_guard<std::mutex> lock(table.mutex);
    if (transformer)
        table.byName.insert(name, std::move(transformer));
    else
        table.byName.remove(name);
}

std::shared_ptr<const ValueTransformer> ValueTransformerRegistry::valueTransformerForName(const QString& name)
{
    Registry& table = registry();
    const std::lock_guard<std::mutex> lock(table.mutex);
    return table.byName.value(name);
}

void ValueTransformerRegistry::registerDefaultTransformers()
{
    setValueTransformer(std::make_shared<NSBoolToStringTransformer>(), QStringLiteral("NSBoolToStringTransformer"));
    setValueTransformer(std::make_shared<SignalToStringTransformer>(), QStringLiteral("SignalToStringTransformer"));
    setValueTransformer(std::make_shared<ChannelToStringTransformer>(), QStringLiteral("ChannelToStringTransformer"));
    setValueTransformer(std::make_shared<SpeedToStringTransformer>(), QStringLiteral("SpeedToStringTransformer"));
    setValueTransformer(std::make_shared<NSBoolToEnableDIsableTransformer>(),
                        QStringLiteral("NSBoolToEnableDIsableTransformer"));
    setValueTransformer(std::make_shared<ChannelBandTransformer>(), QStringLiteral("ChannelBandTransformer"));
    setValueTransformer(std::make_shared<SNRToStringTransformer>(), QStringLiteral("SNRToStringTransformer"));
    setValueTransformer(std::make_shared<NumberTransformer>(), QStringLiteral("NumberTransformer"));
    setValueTransformer(std::make_shared<ChannelUtilizationTransformer>(),
                        QStringLiteral("ChannelUtilizationTransformer"));
}

} // namespace scan
