#pragma once

#include "graphs/channel_band.h"
#include "graphs/graph_style.h"
#include "graphs/plot_stack.h"
#include "scan/scaned_result_info.h"

#include <QHash>
#include <QObject>
#include <QPointF>

#include <optional>

namespace graphs {
class ColorCodesManager;
}
namespace core {
class UserSettings;
}

// The data of one channel graph (2.4 GHz or 5 GHz by the band given): one flat-topped curve
// per access point at its latest signal, its SSID over the curve, highlighting, and the frame.
namespace graphs {

struct CurveLabel {
    QString text;
    FontSpec font{QStringLiteral("Oswald"), 13.0};
    TextAlignment alignment = TextAlignment::Left;
    double width = 300.0;
    double height = 25.0;
    ColourCode colour;
};

// One curve as the painter draws it; a curve whose record is gone has no points.
struct ChannelCurve : PlotLine {
    // Written at the top right corner of the curve (its third point).
    std::optional<CurveLabel> label;
};

class ChannelGraphModel : public QObject {
    Q_OBJECT
public:
    static constexpr double newLineWidth = 4.0;
    static constexpr int pointsPerCurve = 4;
    static constexpr int labelledPoint = 2;

    ChannelGraphModel(const ChannelBand& band, ColorCodesManager& colours, const core::UserSettings& settings,
                      GraphTheme theme = {}, QObject* parent = nullptr);

    void addPlotToGraph(const QString& bssid, const scan::ScanedResultInfo& record);
    // Replaces the record without redrawing; the caller reloads once per scan.
    void updateGraphDataPoints(const scan::ScanedResultInfo& record, const QString& bssid);
    void removePlotFromGraph(const QString& bssid);
    // Forgets every record; the curves stay on the graph but have nothing to draw.
    void clearGraph();
    void reloadGraph();
    void didRemoveAllPlots();
    // Asking for the highlighted network again switches highlighting off.
    void highlightGraph(const QString& bssid);
    // Re-reads the grid-line switch; emits changed() when it moved.
    void refreshSettings();

    const ChannelBand& band() const { return band_; }
    GraphLayout layout() const;
    QString highlightedGraphID() const { return plots_.highlighted(); }

    QStringList plotIdentifiers() const { return plots_.identifiers(); }
    int numberOfRecords(const QString& identifier) const;
    // The index is taken modulo four, as the kit may ask past the end while hit-testing.
    QPointF point(const QString& identifier, int index) const;
    std::optional<CurveLabel> dataLabel(const QString& identifier, int index) const;
    std::optional<ChannelCurve> curve(const QString& identifier) const;

signals:
    void changed();

private:
    const ChannelBand& band_;
    ColorCodesManager& colours_;
    const core::UserSettings& settings_;
    GraphTheme theme_;
    bool gridLines_ = true;
    QHash<QString, scan::ScanedResultInfo> records_;
    PlotStack plots_;
};

} // namespace graphs
