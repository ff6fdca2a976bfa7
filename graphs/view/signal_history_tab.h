#pragma once

#include "graphs/view/graph_view.h"

#include <QWidget>

namespace graphs {
class SignalHistoryModel;
}

// The signal history tab: one line per network over the last twelve scans; the highlighted
// line can be followed with the mouse or, with the graph focused, stepped along with the arrow
// keys; either shows the dashed selection line and the sample's values beside it.
namespace graphs::view {

class SignalHistoryTab : public QWidget {
    Q_OBJECT
public:
    explicit SignalHistoryTab(SignalHistoryModel& model, QWidget* parent = nullptr);

    GraphView* graphView() const { return view_; }
    // The sample the annotation stands at, or -1.
    int annotatedSample() const { return annotated_; }
    void showAnnotation(int index);

private:
    void followMouse(const QPointF& spot);
    void step(plot::widget::PlotView::Step step);
    int nearestSample(double x) const;

    SignalHistoryModel& model_;
    GraphView* view_;
    int annotated_ = -1;
};

} // namespace graphs::view
