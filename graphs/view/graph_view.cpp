#include "graphs/view/graph_view.h"

#include "graphs/view/scene_style.h"

#include <QEvent>

namespace graphs::view {

GraphView::GraphView(const QString& objectName, const QString& accessibleName, SceneBuilder build, Describer describe,
                     QWidget* parent)
    : PlotView(parent), build_(std::move(build)), describe_(std::move(describe)), theme_(themeFor(palette()))
{
    setObjectName(objectName);
    setAccessibleName(accessibleName);
    refreshSoon_.setSingleShot(true);
    refreshSoon_.setInterval(0);
    connect(&refreshSoon_, &QTimer::timeout, this, &GraphView::refresh);
    refresh();
}

void GraphView::refresh()
{
    refreshSoon_.stop();
    setGraph(build_(theme_));
    setAccessibleDescription(describe_());
}

void GraphView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        theme_ = themeFor(palette());
        refreshSoon();
    }
    PlotView::changeEvent(event);
}

} // namespace graphs::view
