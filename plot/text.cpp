#include "plot/text.h"

#include <QFontDatabase>
#include <QPainter>

#include <mutex>

namespace plot {

QString singleLine(const QString& text)
{
    QString line = text;
    for (QChar& c : line) {
        const char16_t u = c.unicode();
        if (u == u'\n' || u == u'\r' || u == 0x2028 || u == 0x2029)
            c = QChar(0x2424);  // SYMBOL FOR NEWLINE
        else if (u < 0x20 || u == 0x7f)
            c = QChar(0xfffd);
    }
    return line;
}

QFont fontFor(const TextStyle& style)
{
    QFont font(style.family);
    font.setPixelSize(std::max(1, static_cast<int>(style.pixelSize + 0.5)));
    font.setBold(style.bold);
    return font;
}

void drawPlainText(QPainter& painter, const QRectF& box, Qt::Alignment alignment, const QString& text,
                   const TextStyle& style)
{
    painter.setFont(fontFor(style));
    painter.setPen(style.colour);
    // Without Qt::TextDontClip the text is cut at the box; Qt::TextSingleLine keeps it on one line.
    painter.drawText(box, static_cast<int>(alignment) | Qt::TextSingleLine, singleLine(text));
}

void registerBundledFonts()
{
    static std::once_flag once;
    std::call_once(once, [] {
        QFontDatabase::addApplicationFont(QStringLiteral(":/plot/fonts/Oswald-Regular.ttf"));
        QFontDatabase::addApplicationFont(QStringLiteral(":/plot/fonts/Oswald-Bold.ttf"));
    });
}

} // namespace plot
