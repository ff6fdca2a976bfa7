#include "plot/renderer.h"

#include "plot/geometry.h"
#include "plot/text.h"

#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QPolygonF>

#include <cmath>

namespace plot {

namespace {

QPen penFor(const LineStyle& style)
{
    QPen pen(style.colour, style.width);
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCapStyle(Qt::FlatCap);
    if (!style.dashPattern.isEmpty() && style.width > 0.0) {
        // QPen counts dashes in line widths; the style gives pixels.
        QList<qreal> pattern;
        for (double length : style.dashPattern)
            pattern.append(length / style.width);
        pen.setDashPattern(pattern);
    }
    return pen;
}

QLinearGradient gradientOver(const Gradient& gradient, const QRectF& box)
{
    // The angle turns counter-clockwise from "left to right" with y pointing up, as on a graph.
    const double radians = gradient.angleDegrees * M_PI / 180.0;
    const QPointF centre = box.center();
    const double reach = (std::abs(std::cos(radians)) * box.width() + std::abs(std::sin(radians)) * box.height()) / 2.0;
    const QPointF along(std::cos(radians) * reach, -std::sin(radians) * reach);
    QLinearGradient fill(centre - along, centre + along);
    fill.setColorAt(0.0, gradient.from);
    fill.setColorAt(1.0, gradient.to);
    return fill;
}

// Qt 6.4's raster engine hands any batch of more than about 96 spans to QThreadPool's global
// pool in pieces unless the painting thread is one of that pool's own; a long wide
// antialiased segment makes hundreds of spans, and the hand-over costs four times the
// painting itself. Each segment of the line is therefore stroked through a run of clip slices,
// each short enough to stay one batch: the slices share no pixel, so every pixel is blended
// once, as from the whole segment (a cut may round its coverage a level differently). Wider
// pens make more spans per slice, hence narrower slices.
void strokeSegmentsInSlices(QPainter& painter, const QRectF& clip, const QPolygonF& line, double penWidth)
{
    const double devicePixels = std::max(1.0, std::abs(painter.deviceTransform().m11()));
    const int slice = std::max(1, static_cast<int>(std::clamp(20.0 - penWidth, 4.0, 16.0) / devicePixels));
    const double reach = penWidth + 2.0;
    bool clipped = false;
    for (qsizetype i = 1; i < line.size(); ++i) {
        const QLineF segment(line[i - 1], line[i]);
        const bool wide = std::abs(segment.dx()) >= std::abs(segment.dy());
        const double from = wide ? segment.x1() : segment.y1();
        const double to = wide ? segment.x2() : segment.y2();
        const double low = std::min(from, to) - reach;
        const double high = std::max(from, to) + reach;
        if (high - low <= slice) {
            if (clipped)
                painter.setClipRect(clip);
            clipped = false;
            painter.drawLine(segment);
            continue;
        }
        for (int at = static_cast<int>(std::floor(low)); at < high; at += slice) {
            const QRectF band = wide ? QRectF(at, clip.top(), slice, clip.height())
                                     : QRectF(clip.left(), at, clip.width(), slice);
            const QRectF part = band & clip;
            if (part.isEmpty())
                continue;
            painter.setClipRect(part);
            clipped = true;
            painter.drawLine(segment);
        }
    }
    if (clipped)
        painter.setClipRect(clip);
}

void drawScatter(QPainter& painter, const Geometry& geometry, const ScatterPlot& plot)
{
    if (plot.points.isEmpty() || plot.opacity <= 0.0)
        return;
    painter.save();
    painter.setOpacity(std::clamp(plot.opacity, 0.0, 1.0));
    QPolygonF line;
    line.reserve(plot.points.size());
    for (const QPointF& point : plot.points)
        line.append(geometry.toPixel(point));
    if (plot.areaFill && line.size() > 1) {
        const double base = geometry.yToPixel(plot.areaBase);
        QPolygonF area = line;
        area.append(QPointF(line.last().x(), base));
        area.append(QPointF(line.first().x(), base));
        painter.setPen(Qt::NoPen);
        painter.setBrush(gradientOver(*plot.areaFill, area.boundingRect()));
        painter.drawPolygon(area);
    }
    if (plot.line.visible() && line.size() > 1) {
        painter.setBrush(Qt::NoBrush);
        if (!plot.line.dashPattern.isEmpty()) {
            painter.setPen(penFor(plot.line));
            painter.drawPolyline(line);
        } else {
            // Qt 6.4 strokes a translucent polyline as one path over its whole bounding box,
            // which costs about seven times as much as its segments drawn apart. Square caps
            // close the corners the separate segments leave; where two translucent segments
            // meet, their small overlap is drawn twice.
            QPen pen = penFor(plot.line);
            pen.setCapStyle(Qt::SquareCap);
            painter.setPen(pen);
            strokeSegmentsInSlices(painter, geometry.plotArea(), line, plot.line.width);
        }
    }
    if (plot.symbol) {
        painter.setPen(QPen(plot.symbol->outline, 1.0));
        painter.setBrush(plot.symbol->fill);
        for (const QPointF& centre : line)
            painter.drawEllipse(centre, plot.symbol->width / 2.0, plot.symbol->height / 2.0);
    }
    for (const PointLabel& label : plot.labels) {
        if (label.index < 0 || label.index >= line.size())
            continue;
        const QPointF at = line[label.index] + label.offset;
        const QRectF box(at.x() - label.box.width() / 2.0, at.y() - label.box.height(), label.box.width(),
                         label.box.height());
        drawPlainText(painter, box, label.alignment | Qt::AlignBottom, label.text, label.style);
    }
    painter.restore();
}

void drawBars(QPainter& painter, const Geometry& geometry, const BarPlot& plot)
{
    const double base = geometry.yToPixel(plot.base);
    const bool outlined = plot.outline.visible();
    painter.setPen(outlined ? penFor(plot.outline) : QPen(Qt::NoPen));
    for (const Bar& bar : plot.bars) {
        const double centre = bar.location + plot.barOffset;
        const double left = geometry.xToPixel(centre - plot.barWidth / 2.0);
        const double right = geometry.xToPixel(centre + plot.barWidth / 2.0);
        const double tip = geometry.yToPixel(bar.tip);
        painter.setBrush(bar.fill);
        painter.drawRect(QRectF(QPointF(std::min(left, right), std::min(tip, base)),
                                QPointF(std::max(left, right), std::max(tip, base))));
    }
}

double axisLinePosition(const Axis& axis, const QRectF& area)
{
    if (axis.orientation == Orientation::Horizontal)
        return axis.edge == Edge::Low ? area.bottom() : area.top();
    return axis.edge == Edge::Low ? area.left() : area.right();
}

void drawGrid(QPainter& painter, const Geometry& geometry, const Graph& graph, const Axis& axis)
{
    const bool horizontal = axis.orientation == Orientation::Horizontal;
    const Range& range = horizontal ? graph.x : graph.y;
    const QRectF area = geometry.plotArea();
    const auto drawAt = [&](const QList<double>& values, const LineStyle& style) {
        if (!style.visible())
            return;
        painter.setPen(penFor(style));
        for (double value : values) {
            if (horizontal) {
                const double x = geometry.xToPixel(value);
                painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
            } else {
                const double y = geometry.yToPixel(value);
                painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
            }
        }
    };
    drawAt(minorTicks(axis, range), axis.minorGrid);
    drawAt(majorTicks(axis, range), axis.majorGrid);
}

void drawAxis(QPainter& painter, const Geometry& geometry, const Graph& graph, const Axis& axis)
{
    const bool horizontal = axis.orientation == Orientation::Horizontal;
    const Range& range = horizontal ? graph.x : graph.y;
    const QRectF area = geometry.plotArea();
    const double line = axisLinePosition(axis, area);
    // Outwards is down for a horizontal axis and left for a vertical one.
    const double outward = horizontal ? 1.0 : -1.0;
    const auto pixelOf = [&](double value) { return horizontal ? geometry.xToPixel(value) : geometry.yToPixel(value); };
    const auto at = [&](double along, double across) { return horizontal ? QPointF(along, across) : QPointF(across, along); };

    if (axis.line.visible()) {
        painter.setPen(penFor(axis.line));
        painter.drawLine(horizontal ? QLineF(area.left(), line, area.right(), line)
                                    : QLineF(line, area.top(), line, area.bottom()));
        const auto ticks = [&](const QList<double>& values, double length) {
            if (length <= 0.0)
                return;
            for (double value : values)
                painter.drawLine(at(pixelOf(value), line), at(pixelOf(value), line + outward * length));
        };
        ticks(majorTicks(axis, range), axis.majorTickLength);
        ticks(minorTicks(axis, range), axis.minorTickLength);
    }

    const QFontMetricsF labelMetrics(fontFor(axis.labelStyle));
    const double labelHeight = labelMetrics.height();
    const double anchor = line + outward * axis.labelOffset;
    // Labels too dense to read (a rank of thousands of networks) are thinned: one that would
    // touch the label drawn before it is left out.
    QRectF previous;
    for (const TickLabel& label : tickLabels(axis, range)) {
        const double width = labelMetrics.horizontalAdvance(singleLine(label.text)) + 2.0;
        const double along = pixelOf(label.position);
        const QRectF box = horizontal ? QRectF(along - width / 2.0, anchor, width, labelHeight)
                                      : QRectF(anchor - width, along - labelHeight / 2.0, width, labelHeight);
        const QRectF spaced = horizontal ? box.adjusted(-2.0, 0.0, 2.0, 0.0) : box;
        if (!previous.isNull() && spaced.intersects(previous))
            continue;
        previous = spaced;
        drawPlainText(painter, box, horizontal ? Qt::AlignHCenter | Qt::AlignTop : Qt::AlignRight | Qt::AlignVCenter,
                      label.text, axis.labelStyle);
    }

    if (axis.title.isEmpty())
        return;
    const double titleHeight = QFontMetricsF(fontFor(axis.titleStyle)).height();
    const double titleAnchor = line + outward * axis.titleOffset;
    if (horizontal) {
        drawPlainText(painter, QRectF(area.left(), titleAnchor, area.width(), titleHeight), Qt::AlignCenter, axis.title,
                      axis.titleStyle);
        return;
    }
    painter.save();
    painter.translate(titleAnchor, area.center().y());
    painter.rotate(-90.0);
    drawPlainText(painter, QRectF(-area.height() / 2.0, -titleHeight, area.height(), titleHeight), Qt::AlignCenter,
                  axis.title, axis.titleStyle);
    painter.restore();
}

void drawAnnotation(QPainter& painter, const Geometry& geometry, const TextAnnotation& annotation)
{
    const QFont font = fontFor(annotation.style);
    const QFontMetricsF metrics(font);
    // The annotation is the program's own text, one value per line; each line stays plain.
    const QStringList lines = annotation.text.split(QLatin1Char('\n'));
    double width = 0.0;
    for (const QString& line : lines)
        width = std::max(width, metrics.horizontalAdvance(singleLine(line)));
    const double margin = 4.0;
    const QSizeF size(width + 2.0 * margin, metrics.height() * lines.size() + 2.0 * margin);
    const QRectF area = geometry.plotArea();
    const QPointF point = geometry.toPixel(annotation.anchor);
    // Beside the point, turned back inwards where it would leave the plot area.
    double left = point.x() + 8.0;
    if (left + size.width() > area.right())
        left = point.x() - 8.0 - size.width();
    double top = point.y() - size.height() - 8.0;
    if (top < area.top())
        top = point.y() + 8.0;
    left = std::clamp(left, area.left(), std::max(area.left(), area.right() - size.width()));
    top = std::clamp(top, area.top(), std::max(area.top(), area.bottom() - size.height()));
    const QRectF box(QPointF(left, top), size);
    painter.setPen(annotation.border.isValid() ? QPen(annotation.border, 1.0) : QPen(Qt::NoPen));
    painter.setBrush(annotation.background.isValid() ? QBrush(annotation.background) : QBrush(Qt::NoBrush));
    painter.drawRoundedRect(box, 3.0, 3.0);
    for (int i = 0; i < lines.size(); ++i) {
        const QRectF lineBox(box.left() + margin, box.top() + margin + i * metrics.height(), width + 1.0, metrics.height());
        drawPlainText(painter, lineBox, Qt::AlignLeft | Qt::AlignVCenter, lines[i], annotation.style);
    }
}

void drawFrameText(QPainter& painter, const Geometry& geometry, const FrameText& text)
{
    const QRectF area = geometry.plotArea();
    const QPointF at = area.topLeft() + QPointF(area.width() * text.relative.x(), area.height() * text.relative.y()) + text.offset;
    double left = at.x() - text.box.width() / 2.0;
    if (text.alignment & Qt::AlignLeft)
        left = at.x();
    else if (text.alignment & Qt::AlignRight)
        left = at.x() - text.box.width();
    drawPlainText(painter, QRectF(QPointF(left, at.y()), text.box), text.alignment, text.text, text.style);
}

void drawPlots(QPainter& painter, const Geometry& geometry, const QList<Plot>& plots)
{
    for (const Plot& plot : plots) {
        if (const auto* scatter = std::get_if<ScatterPlot>(&plot))
            drawScatter(painter, geometry, *scatter);
        else
            drawBars(painter, geometry, std::get<BarPlot>(plot));
    }
}

} // namespace

void render(const Graph& graph, QPainter& painter, const QSizeF& size)
{
    registerBundledFonts();
    const Geometry geometry(graph, size);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    painter.setLayoutDirection(Qt::LeftToRight);
    if (graph.background.alpha() > 0)
        painter.fillRect(geometry.bounds(), graph.background);
    painter.setPen(Qt::NoPen);
    painter.setBrush(graph.plotAreaBackground);
    painter.drawRoundedRect(geometry.plotArea(), graph.cornerRadius, graph.cornerRadius);

    painter.save();
    painter.setClipRect(geometry.plotArea());
    for (const Axis& axis : graph.axes)
        drawGrid(painter, geometry, graph, axis);
    drawPlots(painter, geometry, graph.plots);
    painter.restore();

    for (const Axis& axis : graph.axes)
        drawAxis(painter, geometry, graph, axis);
    for (const FrameText& text : graph.texts)
        drawFrameText(painter, geometry, text);
    if (graph.annotation)
        drawAnnotation(painter, geometry, *graph.annotation);
    painter.restore();
}

void renderOverlay(const Graph& graph, const QList<Plot>& plots, const std::optional<TextAnnotation>& annotation,
                   QPainter& painter, const QSizeF& size)
{
    const Geometry geometry(graph, size);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setLayoutDirection(Qt::LeftToRight);
    painter.save();
    painter.setClipRect(geometry.plotArea());
    drawPlots(painter, geometry, plots);
    painter.restore();
    if (annotation)
        drawAnnotation(painter, geometry, *annotation);
    painter.restore();
}

QImage renderImage(const Graph& graph, const QSize& size, double devicePixelRatio)
{
    const double ratio = devicePixelRatio > 0.0 ? devicePixelRatio : 1.0;
    QImage image(QSize(static_cast<int>(std::ceil(size.width() * ratio)), static_cast<int>(std::ceil(size.height() * ratio))),
                 QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    render(graph, painter, QSizeF(size));
    return image;
}

} // namespace plot
