#pragma once

#include <QString>
#include <QVariant>

#include <memory>

namespace scan {

// One-way conversions from a record's numbers to the texts the results table and the interface
// view show, looked up by the name a column or label asks for.
class ValueTransformer {
public:
    virtual ~ValueTransformer() = default;

    // The input is a number, or a null QVariant when the value is absent; the text is never null.
    virtual QString transformedValue(const QVariant& value) const = 0;

    static constexpr bool allowsReverseTransformation() { return false; }
};

class NSBoolToStringTransformer final : public ValueTransformer {
public:
    QString transformedValue(const QVariant& value) const override;
};

class NSBoolToEnableDIsableTransformer final : public ValueTransformer {
public:
    QString transformedValue(const QVariant& value) const override;
};

class SignalToStringTransformer final : public ValueTransformer {
public:
    QString transformedValue(const QVariant& value) const override;
};

class ChannelToStringTransformer final : public ValueTransformer {
public:
    QString transformedValue(const QVariant& value) const override;
};

class SpeedToStringTransformer final : public ValueTransformer {
public:
    QString transformedValue(const QVariant& value) const override;
};

class ChannelBandTransformer final : public ValueTransformer {
public:
    QString transformedValue(const QVariant& value) const override;
};

class SNRToStringTransformer final : public ValueTransformer {
public:
    QString transformedValue(const QVariant& value) const override;
};

class NumberTransformer final : public ValueTransformer {
public:
    QString transformedValue(const QVariant& value) const override;
};

class ChannelUtilizationTransformer final : public ValueTransformer {
public:
    QString transformedValue(const QVariant& value) const override;
};

// The process-wide table of transformers by name. Thread-safe.
class ValueTransformerRegistry {
public:
    ValueTransformerRegistry() = delete;

    // A later transformer under the same name replaces the earlier one; a null one removes it.
    static void setValueTransformer(std::shared_ptr<const ValueTransformer> transformer, const QString& name);
    // Null when nothing is registered under the name.
    static std::shared_ptr<const ValueTransformer> valueTransformerForName(const QString& name);
    // Registers the nine display transformers under their class names.
    static void registerDefaultTransformers();
};

} // namespace scan
