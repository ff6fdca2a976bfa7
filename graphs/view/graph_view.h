#pragma once

#include "graphs/graph_style.h"
#include "plot/widget/plot_view.h"

#include <QTimer>

#include <functional>

// A graph tab's picture: rebuilt from its model after the model changed (once per turn of the
// event loop, however many changes a scan made), in the desktop's light or dark colours, and
// described for screen readers.
namespace graphs::view {

class GraphView : public plot::widget::PlotView {
    Q_OBJECT
public:
    using SceneBuilder = std::function<plot::Graph(const GraphTheme&)>;
    // The spoken summary, for example "2.4 GHz channel graph, 23 networks".
    using Describer = std::function<QString()>;

    GraphView(const QString& objectName, const QString& accessibleName, SceneBuilder build, Describer describe,
              QWidget* parent = nullptr);

    // Call when the model changed.
    void refreshSoon() { refreshSoon_.start(); }
    // Rebuilds the picture now.
    void refresh();
    const GraphTheme& theme() const { return theme_; }
    // What the mouse or keyboard points at (an annotation's lines, a bar's name), spoken after
    // the summary; empty when nothing is.
    void setPointedAt(const QString& text);

protected:
    void changeEvent(QEvent* event) override;

private:
    void describe();

    SceneBuilder build_;
    Describer describe_;
    QString pointedAt_;
    GraphTheme theme_;
    QTimer refreshSoon_;
};

} // namespace graphs::view
