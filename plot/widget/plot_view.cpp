#include "plot/widget/plot_view.h"

#include "plot/renderer.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <numeric>
#include <vector>

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

int PlotView::stepped(int current, int count, Step step)
{
    if (count <= 0)
        return -1;
    switch (step) {
    case Step::First:
        return 0;
    case Step::Last:
        return count - 1;
    case Step::Previous:
        return current < 0 || current >= count ? count - 1 : std::max(current - 1, 0);
    case Step::Next:
        return current < 0 || current >= count ? 0 : std::min(current + 1, count - 1);
    }
    return -1;
}

int PlotView::steppedAlong(const QList<QPointF>& points, int current, Step step) const
{
    const Geometry geometry = plotGeometry();
    std::vector<int> order(static_cast<std::size_t>(points.size()));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        return geometry.xToPixel(points[a].x()) < geometry.xToPixel(points[b].x());
    });
    const auto at = std::find(order.begin(), order.end(), current);
    const int position = at == order.end() ? -1 : static_cast<int>(at - order.begin());
    const int next = stepped(position, static_cast<int>(order.size()), step);
    return next < 0 ? -1 : order[static_cast<std::size_t>(next)];
}

void PlotView::scheduleRender()
{
    if (!isVisible()) {
        renderWhenShown_ = true;
        return;
    }
    renderWhenShown_ = false;
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
    if (hasOverlay())
        renderOverlay(graph_, overlayPlots_, overlayAnnotation_, painter, QSizeF(size()));
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2.0));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(rect()).adjusted(1.0, 1.0, -1.0, -1.0));
    }
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

void PlotView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (renderWhenShown_)
        scheduleRender();
}

void PlotView::keyPressEvent(QKeyEvent* event)
{
    if (event->modifiers() & ~Qt::KeypadModifier) {
        QWidget::keyPressEvent(event);
        return;
    }
    switch (event->key()) {
    case Qt::Key_Left:
        emit stepRequested(Step::Previous);
        return;
    case Qt::Key_Right:
        emit stepRequested(Step::Next);
        return;
    case Qt::Key_Home:
        emit stepRequested(Step::First);
        return;
    case Qt::Key_End:
        emit stepRequested(Step::Last);
        return;
    case Qt::Key_Escape: {
        // Escape belongs to the window (a dialog closes on it) unless it took an overlay away.
        const bool shown = hasOverlay();
        emit dismissRequested();
        event->setAccepted(shown && !hasOverlay());
        return;
    }
    default:
        QWidget::keyPressEvent(event);
    }
}

void PlotView::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
}

void PlotView::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    update();
}

void PlotView::leaveEvent(QEvent* event)
{
    emit mouseLeft();
    QWidget::leaveEvent(event);
}

} // namespace plot::widget
