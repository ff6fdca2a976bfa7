#include "plot/geometry.h"

#include <algorithm>

namespace plot {

Geometry::Geometry(const Graph& graph, const QSizeF& size)
    : x_(graph.x), y_(graph.y), bounds_(QPointF(0.0, 0.0), size)
{
    const QRectF inner = bounds_.adjusted(graph.graphPadding, graph.graphPadding, -graph.graphPadding, -graph.graphPadding);
    const Padding& p = graph.plotAreaPadding;
    QRectF area = inner.adjusted(p.left, p.top, -p.right, -p.bottom);
    // A window smaller than its paddings still gets a (degenerate) plot area, never a negative one.
    area.setWidth(std::max(0.0, area.width()));
    area.setHeight(std::max(0.0, area.height()));
    plotArea_ = area;
}

double Geometry::xToPixel(double x) const { return x_.toPixel(x, plotArea_.left(), plotArea_.width()); }

double Geometry::yToPixel(double y) const { return y_.toPixel(y, plotArea_.bottom(), -plotArea_.height()); }

QPointF Geometry::toPixel(const QPointF& data) const { return {xToPixel(data.x()), yToPixel(data.y())}; }

QPointF Geometry::toData(const QPointF& pixel) const
{
    return {x_.fromPixel(pixel.x(), plotArea_.left(), plotArea_.width()),
            y_.fromPixel(pixel.y(), plotArea_.bottom(), -plotArea_.height())};
}

} // namespace plot
