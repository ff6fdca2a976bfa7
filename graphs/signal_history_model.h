#pragma once

#include "graphs/graph_style.h"
#include "graphs/plot_stack.h"
#include "graphs/signal_annotation.h"
#include "scan/scaned_result_info.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointF>

#include <optional>

namespace graphs {
class ColorCodesManager;
}
namespace scanning {
class WiFiScanTest;
}
namespace core {
class UserSettings;
}

// The data of the signal history graph: one line per access point, signal against seconds
// before its newest sample, over the last twelve scan intervals, with optional value labels
// and a highlighted line the mouse can follow.
namespace graphs {

struct HistoryLine : PlotLine {
    std::optional<PointSymbol> symbol;
};

struct ValueLabel {
    QString text;
    TextAlignment alignment = TextAlignment::Right;
    double width = 0.0;
    double height = 20.0;
    // Horizontal shift of the label's layer from its point.
    double xShift = 0.0;
    ColourCode colour{1.0, 1.0, 1.0, 1.0};
};

// The dashed vertical line drawn through the sample under the mouse.
struct SelectionLine {
    QPointF from;
    QPointF to;
    ColourCode colour;
    double dash = 5.0;
    double gap = 2.0;
    double width = 1.0;
};

class SignalHistoryModel : public QObject {
    Q_OBJECT
public:
    static constexpr double lineWidth = 3.0;
    static constexpr int intervalsShown = 12;
    // The sample the annotation returns to after each scan while a line is highlighted.
    static constexpr int annotationRecord = 13;

    SignalHistoryModel(ColorCodesManager& colours, const core::UserSettings& settings, GraphTheme theme = {},
                       QObject* parent = nullptr);

    // history: the network's samples, newest first; the test's own list, kept untrimmed.
    void addPlotToGraph(const QString& bssid, const QList<scan::ScanedResultInfo>& history);
    void updateGraphDataPoints(const QList<scan::ScanedResultInfo>& history, const QString& bssid);
    // Takes the line off the graph; its samples stay, so re-adding shows them at once.
    void removePlotFromGraph(const QString& bssid);
    void clearGraph();
    // Follows the test's scan interval, then redraws.
    void reloadGraph(const scanning::WiFiScanTest& test);
    void didRemoveAllPlots();
    void highlightGraph(const QString& bssid);
    // Re-reads the grid-line and value-label switches; emits changed() when one moved.
    void refreshSettings();

    GraphLayout layout() const;
    QString highlightedGraphID() const { return plots_.highlighted(); }
    QStringList plotIdentifiers() const { return plots_.identifiers(); }
    std::optional<HistoryLine> line(const QString& identifier) const;
    std::optional<ValueLabel> dataLabel(const QString& identifier, int index) const;

    // The annotation and selection line at one sample of the highlighted line.
    SignalAnnotation annotation() const { return SignalAnnotation{}; }
    QString annotationText(int index) const;
    std::optional<SelectionLine> selectionLine(int index) const;

signals:
    void changed();
    void annotationMoved(int index);

private:
    QPointF point(const QList<scan::ScanedResultInfo>& history, int index) const;

    ColorCodesManager& colours_;
    const core::UserSettings& settings_;
    GraphTheme theme_;
    bool gridLines_ = true;
    bool showValues_ = false;
    int refreshInterval_ = 0;
    ValueRange xRange_{59.0, -59.0};
    double xMajorInterval_ = 15.0;
    QHash<QString, QList<scan::ScanedResultInfo>> histories_;
    PlotStack plots_;
};

} // namespace graphs
