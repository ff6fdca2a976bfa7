#pragma once

#include "graphs/view/graph_view.h"

#include <QWidget>

class QLabel;

namespace graphs {
class SignalRankModel;
}

// The signal rank tab: a bar per network, strongest on the left, with the selected, hovered
// and connected networks named above the bars and "Best" and "Worst" under their ends. The
// hovered bar follows the mouse, or the arrow, Home and End keys when the graph has the focus.
namespace graphs::view {

class SignalRankTab : public QWidget {
    Q_OBJECT
public:
    explicit SignalRankTab(SignalRankModel& model, QWidget* parent = nullptr);

    GraphView* graphView() const { return view_; }
    QLabel* selectedLabel() const { return selected_; }
    QLabel* hoverLabel() const { return hovered_; }
    QLabel* activeLabel() const { return active_; }
    // The bar under a point of the graph (data coordinates), or -1.
    int barAt(const QPointF& spot) const;

private:
    void hover(int index);
    void showLabels();

    SignalRankModel& model_;
    GraphView* view_;
    QLabel* selected_;
    QLabel* hovered_;
    QLabel* active_;
    int hoveredIndex_ = -1;
};

} // namespace graphs::view
