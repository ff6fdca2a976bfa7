#include "sensor/view/sensor_log_view.h"

#include <QFontDatabase>
#include <QScrollBar>
#include <QTextCursor>

namespace sensor::view {
namespace {

// The last count lines of text (each ending in "\n").
QString newestLines(const QString& text, qsizetype count)
{
    qsizetype start = text.size() - 1;
    for (qsizetype found = 0; start > 0; --start) {
        if (text[start - 1] == u'\n' && ++found == count)
            break;
    }
    return text.mid(start);
}

} // namespace

SensorLogView::SensorLogView(QWidget* parent) : QPlainTextEdit(parent)
{
    setObjectName(QStringLiteral("udpLogData"));
    setAccessibleName(tr("Sensor log"));
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setUndoRedoEnabled(false);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setMaximumBlockCount(keptLines);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    refresh_.setSingleShot(true);
    refresh_.setInterval(refreshInterval);
    connect(&refresh_, &QTimer::timeout, this, &SensorLogView::flush);
}

void SensorLogView::appendText(const QString& text)
{
    pending_ += text;
    pendingLines_ += text.count(u'\n');
    // A flood between two refreshes would only be thrown away at the next one.
    if (pendingLines_ > 2 * keptLines) {
        pending_ = newestLines(pending_, keptLines);
        pendingLines_ = keptLines;
    }
    if (!refresh_.isActive())
        refresh_.start();
}

void SensorLogView::clearLog()
{
    refresh_.stop();
    pending_.clear();
    pendingLines_ = 0;
    clear();
}

void SensorLogView::flush()
{
    refresh_.stop();
    if (pending_.isEmpty())
        return;
    QScrollBar* bar = verticalScrollBar();
    // Someone reading further up keeps their place; otherwise the view follows the newest line.
    const bool following = bar->value() == bar->maximum();
    QString text = pendingLines_ >= keptLines ? newestLines(pending_, keptLines) : pending_;
    text.chop(1);
    if (pendingLines_ >= keptLines || document()->isEmpty()) {
        setPlainText(text);
    } else {
        QTextCursor end(document());
        end.movePosition(QTextCursor::End);
        end.insertText(QLatin1Char('\n') + text);
    }
    pending_.clear();
    pendingLines_ = 0;
    if (following)
        bar->setValue(bar->maximum());
}

} // namespace sensor::view
