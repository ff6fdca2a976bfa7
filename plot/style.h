#pragma once

#include <QColor>
#include <QList>
#include <QString>

// The look of lines, texts and fills, as plain values a render thread can copy.
namespace plot {

struct Padding {
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    double left = 0.0;
    bool operator==(const Padding&) const = default;
};

struct TextStyle {
    QString family = QStringLiteral("Oswald");
    double pixelSize = 12.0;
    bool bold = false;
    QColor colour = Qt::gray;
};

// A width of zero draws nothing. A dash pattern is given in pixels (dash, gap, ...).
struct LineStyle {
    double width = 1.0;
    QColor colour = Qt::gray;
    QList<double> dashPattern;
    bool visible() const { return width > 0.0 && colour.alpha() > 0; }
};

// A linear fill whose start colour is at the angle's tail: -90 degrees runs from top to bottom.
struct Gradient {
    QColor from;
    QColor to;
    double angleDegrees = -90.0;
};

// Point symbols are ellipses of this size in pixels.
struct Symbol {
    double width = 4.0;
    double height = 4.0;
    QColor fill;
    QColor outline;
};

} // namespace plot
