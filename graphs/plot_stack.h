#pragma once

#include "graphs/graph_style.h"

#include <QList>
#include <QPointF>
#include <QString>

#include <functional>
#include <optional>

// The plots of one graph in drawing order (last on top) with their line styles, and the
// highlighting rules the channel and signal history graphs share: the chosen curve is
// brought to the top with a full line and a gradient fill, every other curve fades.
namespace graphs {

struct PlotStyle {
    QString identifier;
    double lineWidth = 0.0;
    double lineAlpha = 0.0;
    ColourCodePtr colour;
    std::optional<Gradient> areaFill;
};

// One plotted line as a painter draws it: the stack's style resolved to colours, plus points.
struct PlotLine {
    QString identifier;
    double lineWidth = 0.0;
    ColourCode lineColour;
    std::optional<Gradient> areaFill;
    double areaBase = signalFloorDbm;
    double hitMargin = 5.0;
    QList<QPointF> points;
};

class PlotStack {
public:
    static constexpr double fadedAlpha = 0.2;
    static constexpr double restingAlpha = 0.75;
    static constexpr double fadedLineWidth = 3.0;

    // What highlighting needs of a plot's newest record; none when the plot has no data.
    struct Target {
        ColourCodePtr colour;
        int rssi = 0;
    };
    using TargetLookup = std::function<std::optional<Target>(const QString& identifier)>;

    // Adds a plot on top; an existing plot of that identifier keeps its place and style.
    void add(const QString& identifier, double lineWidth, double lineAlpha, ColourCodePtr colour);
    void remove(const QString& identifier);
    bool contains(const QString& identifier) const;

    QStringList identifiers() const;
    const PlotStyle* style(const QString& identifier) const;
    // The line of a plot with its style resolved and no points yet; nullopt for an unknown plot.
    std::optional<PlotLine> line(const QString& identifier) const;

    // Highlights the identifier, or switches highlighting off when it is empty, already
    // highlighted or not plotted. A plot whose data is gone is taken off the graph and the
    // previous highlight stays remembered, as the graph had already lifted the old curve.
    void highlight(const QString& identifier, const TargetLookup& lookup);
    void forgetHighlight() { highlighted_.clear(); }
    QString highlighted() const { return highlighted_; }

    // Every plot but the selection line and the excluded one gets the faded line width and
    // the alpha; so after any highlight change the other curves are thinner than new ones.
    void changeOpacityExcluding(const QString& excluded, double alpha);

    // Fill alpha of a highlighted curve: (100 - |rssi|) / 100 in integer arithmetic, clamped to
    // 0.8 above and raised to 0.4 at 0.1 or less, so every real signal gets 0.4 and 0 dBm 0.8.
    static double highlightFillAlpha(int rssi);
    static Gradient highlightFill(const ColourCodePtr& colour, int rssi);

private:
    PlotStyle* find(const QString& identifier);

    QList<PlotStyle> plots_;
    QString highlighted_;
};

} // namespace graphs
