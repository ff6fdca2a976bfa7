#pragma once

#include "plot/style.h"

#include <QFont>
#include <QRectF>
#include <QString>

class QPainter;

// Texts from outside (network names among them) are drawn as they are: never as markup, on one
// line, cut off at their box.
namespace plot {

// Control characters and line or paragraph separators become visible symbols, so a name with
// a newline stays one line and shows that it holds one.
QString singleLine(const QString& text);

QFont fontFor(const TextStyle& style);

// Draws the text on one line inside the box, clipped to it.
void drawPlainText(QPainter& painter, const QRectF& box, Qt::Alignment alignment, const QString& text,
                   const TextStyle& style);

// Makes the bundled Oswald faces known to Qt; safe to call from any thread, any number of times.
void registerBundledFonts();

} // namespace plot
