#include "graphs/view/graph_view.h"

#include "graphs/view/scene_style.h"

#include <QEvent>
#include <QStringList>

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
    describe();
}

void GraphView::setPointedAt(const QString& text)
{
    // The annotation's lines are padded for the picture; a listener hears them as one phrase.
    QStringList parts;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        if (!line.trimmed().isEmpty())
            parts << line.simplified();
    }
    const QString phrase = parts.join(QStringLiteral(", "));
    if (phrase == pointedAt_)
        return;
    pointedAt_ = phrase;
    describe();
}

void GraphView::describe()
{
    const QString summary = describe_();
    setAccessibleDescription(pointedAt_.isEmpty() ? summary : tr("%1. %2").arg(summary, pointedAt_));
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
