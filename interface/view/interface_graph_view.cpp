#include "interface/view/interface_graph_view.h"

#include "plot/widget/plot_view.h"

#include <QVBoxLayout>

namespace connection::view {
namespace {

const QColor lineColour(128, 128, 128);
constexpr double floorDbm = -100.0;
constexpr double hoverReachSeconds = 5.0;

} // namespace

InterfaceGraphView::InterfaceGraphView(QWidget* parent) : QWidget(parent), view_(new plot::widget::PlotView)
{
    setObjectName(QStringLiteral("interfaceTabGraph"));
    setAccessibleName(tr("Signal and noise of the connection"));
    view_->setObjectName(QStringLiteral("interfaceTabPlot"));
    view_->setAccessibleName(tr("Signal and noise graph"));
    view_->setMouseTracking(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    connect(view_, &plot::widget::PlotView::mouseMovedTo, this, [this](const QPointF& point) { hoverAt(point); });
    connect(view_, &plot::widget::PlotView::mouseLeft, this, [this] {
        hoverX_.reset();
        view_->clearOverlay();
    });
    rebuild();
}

void InterfaceGraphView::setSamples(const QList<InterfaceSample>& samples)
{
    data_ = interfaceGraphData(samples);
    rebuild();
}

void InterfaceGraphView::setShowGridLines(bool show)
{
    if (show == showGridLines_)
        return;
    showGridLines_ = show;
    rebuild();
}

void InterfaceGraphView::rebuild()
{
    scene_ = interfaceGraphScene(data_, showGridLines_);
    view_->setGraph(scene_);
    if (hoverX_)
        hoverAt({*hoverX_, 0.0});
}

void InterfaceGraphView::hoverAt(const QPointF& point)
{
    const std::optional<qsizetype> index = sampleNearest(data_, point.x(), hoverReachSeconds);
    if (!index) {
        hoverX_.reset();
        view_->clearOverlay();
        return;
    }
    hoverX_ = point.x();
    const QPointF signal = data_.signal.at(*index);
    plot::ScatterPlot marker;
    marker.identifier = QStringLiteral("HOVER");
    marker.points = {{signal.x(), floorDbm}, {signal.x(), 0.0}};
    marker.line = plot::LineStyle{1.0, Qt::white, {4.0, 4.0}};
    plot::TextAnnotation annotation;
    annotation.text = hoverText(data_, *index);
    annotation.anchor = signal;
    annotation.style = plot::TextStyle{QStringLiteral("Oswald"), 12.0, false, Qt::white};
    annotation.background = QColor(0, 0, 0, 200);
    annotation.border = lineColour;
    view_->setOverlay({marker}, annotation);
}

} // namespace connection::view
