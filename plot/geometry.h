#pragma once

#include "plot/graph.h"

#include <QPointF>
#include <QRectF>

// Where a graph's plot area lies in a picture of a given size, and the mapping between data
// values and pixels there. The renderer and the mouse handling of a view share it.
namespace plot {

class Geometry {
public:
    Geometry(const Graph& graph, const QSizeF& size);

    QRectF bounds() const { return bounds_; }
    QRectF plotArea() const { return plotArea_; }
    QPointF toPixel(const QPointF& data) const;
    QPointF toData(const QPointF& pixel) const;
    double xToPixel(double x) const;
    double yToPixel(double y) const;

private:
    Range x_;
    Range y_;
    QRectF bounds_;
    QRectF plotArea_;
};

} // namespace plot
