#include "plot/axis.h"

#include <cmath>

namespace plot {

namespace {

// A bound on ticks so that a tiny interval over a wide range cannot stall a render.
constexpr int maxTicks = 1000;
// Keeps a tick that lands a rounding error outside the range.
constexpr double edgeTolerance = 1e-9;

QList<double> ticksEvery(double interval, double origin, const Range& range)
{
    QList<double> ticks;
    if (!(interval > 0.0) || !std::isfinite(interval))
        return ticks;
    const double low = range.minimum();
    const double high = range.maximum();
    const double tolerance = edgeTolerance * std::max(1.0, std::abs(high - low));
    double k = std::ceil((low - origin) / interval - edgeTolerance);
    for (int n = 0; n < maxTicks; ++n, k += 1.0) {
        const double value = origin + k * interval;
        if (value > high + tolerance)
            break;
        ticks.append(value);
    }
    return ticks;
}

double intervalOf(const Axis& axis, const Range& range)
{
    return axis.labelling == Labelling::Automatic ? automaticInterval(range) : axis.majorInterval;
}

QString labelText(const Axis& axis, double value)
{
    if (axis.format == LabelFormat::TimeOfDay)
        return axis.timeOrigin.addMSecs(std::llround(value * 1000.0)).toString(axis.timeFormat);
    // Numbers carry no fractional digits; -0 reads as 0.
    const long long rounded = std::llround(value);
    return QString::number(rounded == 0 ? 0 : rounded);
}

} // namespace

double automaticInterval(const Range& range)
{
    const double span = std::abs(range.length);
    if (!(span > 0.0) || !std::isfinite(span))
        return 1.0;
    const double rough = span / 5.0;
    const double magnitude = std::pow(10.0, std::floor(std::log10(rough)));
    const double steps[] = {1.0, 2.0, 5.0, 10.0};
    for (double step : steps) {
        if (step * magnitude >= rough)
            return step * magnitude;
    }
    return 10.0 * magnitude;
}

QList<double> majorTicks(const Axis& axis, const Range& range)
{
    switch (axis.labelling) {
    case Labelling::None:
        return {};
    case Labelling::Custom: {
        QList<double> ticks;
        for (const TickLabel& label : axis.customLabels) {
            if (range.contains(label.position))
                ticks.append(label.position);
        }
        return ticks;
    }
    case Labelling::FixedInterval:
    case Labelling::Automatic:
        break;
    }
    return ticksEvery(intervalOf(axis, range), axis.labellingOrigin, range);
}

QList<double> minorTicks(const Axis& axis, const Range& range)
{
    if (axis.minorTicksPerInterval <= 0 || axis.labelling == Labelling::None || axis.labelling == Labelling::Custom)
        return {};
    const double minor = intervalOf(axis, range) / (axis.minorTicksPerInterval + 1);
    QList<double> ticks;
    const QList<double> majors = majorTicks(axis, range);
    for (double value : ticksEvery(minor, axis.labellingOrigin, range)) {
        bool onMajor = false;
        for (double major : majors)
            onMajor = onMajor || std::abs(major - value) < minor * 1e-6;
        if (!onMajor)
            ticks.append(value);
    }
    return ticks;
}

QList<TickLabel> tickLabels(const Axis& axis, const Range& range)
{
    QList<TickLabel> labels;
    if (axis.labelling == Labelling::Custom) {
        for (const TickLabel& label : axis.customLabels) {
            if (range.contains(label.position))
                labels.append(label);
        }
        return labels;
    }
    for (double value : majorTicks(axis, range))
        labels.append(TickLabel{value, labelText(axis, value)});
    return labels;
}

} // namespace plot
