#pragma once

#include "interface/view/interface_graph_scene.h"

#include <QWidget>

namespace plot::widget {
class PlotView;
}

namespace connection::view {

// The interface graph: "Signal" and "Noise" over the last five minutes with their fills, and a
// hover annotation for the sample under the mouse. Rendering happens on the plot view's thread.
class InterfaceGraphView : public QWidget {
    Q_OBJECT
public:
    explicit InterfaceGraphView(QWidget* parent = nullptr);

    void setSamples(const QList<InterfaceSample>& samples);
    void setShowGridLines(bool show);
    // The picture as it stands, for a render elsewhere (the connected report's image).
    const plot::Graph& scene() const { return scene_; }
    plot::widget::PlotView* plotView() const { return view_; }

private:
    void rebuild();
    void hoverAt(const QPointF& point);

    plot::widget::PlotView* view_;
    InterfaceGraphData data_;
    bool showGridLines_ = false;
    plot::Graph scene_;
    std::optional<double> hoverX_;
};

} // namespace connection::view
