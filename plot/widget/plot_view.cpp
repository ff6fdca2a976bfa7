#include "plot/widget/plot_view.h"

#include "plot/renderer.h"

#include <QMouseEvent>
#include <QPainter>

namespace plot::widget {

PlotView::PlotView(QWidget* parent) : QWidget(parent)
{
    pool_.setMaxThreadCount(1);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setFocusPolicy(Qt::StrongFocus);
}

PlotView::~PlotView()
{
    latest_->store(0);
    pool_.clear();
    pool_.waitForDone();
}

void PlotView::setGraph(Graph graph)
{
    graph_ = std::move(graph);
    scheduleRender();
}

void PlotView::setOverlay(QList<Plot> plots, std::optional<TextAnnotation> annotation)
{
    overlayPlots_ = std::move(plots);
    overlayAnnotation_ = std::move(annotation);
    update();
}

void PlotView::clearOverlay()
{
    if (overlayPlots_.isEmpty() && !overlayAnnotation_)
        return;
    overlayPlots_.clear();
    overlayAnnotation_.reset();
    update();
}

void PlotView::scheduleRender()
{
    const quint64 generation = ++generation_;
    latest_->store(generation);
    const QSize logical = size().isEmpty() ? sizeHint() : size();
    const double ratio = devicePixelRatioF();
    // Renders still waiting are stale now; only the running one, if any, finishes.
    pool_.clear();
    pool_.start([this, graph = graph_, logical, ratio, generation, latest = latest_] {
        if (latest->load() != generation)
            return;
        const QImage image = renderImage(graph, logical, ratio);
        if (latest->load() != generation)
            return;
        QMetaObject::invokeMethod(this, [this, generation, image] { accept(generation, image); }, Qt::QueuedConnection);
    });
}

void PlotView::accept(quint64 generation, const QImage& image)
{
    if (generation != generation_)
        return;
    cache_ = image;
    shownGeneration_ = generation;
    update();
    emit rendered();
}

void PlotView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (!cache_.isNull())
        painter.drawImage(QRectF(rect()), cache_);
    if (!overlayPlots_.isEmpty() || overlayAnnotation_)
        renderOverlay(graph_, overlayPlots_, overlayAnnotation_, painter, QSizeF(size()));
    // A move to a screen of another pixel ratio needs a sharper (or smaller) picture.
    if (!cache_.isNull() && cache_.devicePixelRatio() != devicePixelRatioF() && !renderPending())
        scheduleRender();
}

void PlotView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    scheduleRender();
}

void PlotView::mouseMoveEvent(QMouseEvent* event)
{
    emit mouseMovedTo(plotGeometry().toData(event->position()), event->position());
    QWidget::mouseMoveEvent(event);
}

void PlotView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        emit clickedAt(plotGeometry().toData(event->position()));
    QWidget::mousePressEvent(event);
}

void PlotView::leaveEvent(QEvent* event)
{
    emit mouseLeft();
    QWidget::leaveEvent(event);
}

} // namespace plot::widget
