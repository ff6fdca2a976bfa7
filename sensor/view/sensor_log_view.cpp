#include "sensor/view/sensor_log_view.h"

#include "sensor/view/sensor_log_lines.h"

#include <QAction>
#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QScrollBar>

#include <algorithm>

namespace sensor::view {

SensorLogView::SensorLogView(QWidget* parent)
    : QListView(parent), lines_(new SensorLogLines(keptLines, this)), copy_(new QAction(tr("&Copy"), this))
{
    setObjectName(QStringLiteral("udpLogData"));
    setAccessibleName(tr("Sensor log"));
    setModel(lines_);
    // One height for every row: a batch of thousands of lines costs no layout, only the rows
    // in sight are ever measured.
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    copy_->setObjectName(QStringLiteral("copySensorLogAction"));
    copy_->setShortcut(QKeySequence::Copy);
    copy_->setShortcutContext(Qt::WidgetShortcut);
    connect(copy_, &QAction::triggered, this, [this] {
        QModelIndexList selected = selectionModel()->selectedRows();
        if (selected.isEmpty()) {
            QGuiApplication::clipboard()->setText(text());
            return;
        }
        std::sort(selected.begin(), selected.end());
        QStringList lines;
        for (const QModelIndex& index : selected)
            lines.append(lines_->line(index.row()));
        QGuiApplication::clipboard()->setText(lines.join(u'\n'));
    });
    addAction(copy_);
    setContextMenuPolicy(Qt::ActionsContextMenu);

    refresh_.setSingleShot(true);
    refresh_.setInterval(refreshInterval);
    connect(&refresh_, &QTimer::timeout, this, &SensorLogView::flush);
}

void SensorLogView::appendText(const QString& text)
{
    pending_.append(text);
    // A flood between two refreshes would only be thrown away at the next one.
    if (pending_.size() > 2 * keptLines)
        pending_.erase(pending_.begin(), pending_.end() - keptLines);
    if (!refresh_.isActive())
        refresh_.start();
}

void SensorLogView::clearLog()
{
    refresh_.stop();
    pending_.clear();
    lines_->clear();
}

void SensorLogView::flush()
{
    refresh_.stop();
    if (pending_.isEmpty())
        return;
    QScrollBar* bar = verticalScrollBar();
    // Someone reading further up keeps their place; otherwise the view follows the newest line.
    const bool following = bar->value() == bar->maximum();
    QStringList lines;
    lines.reserve(pending_.size());
    for (QString& added : pending_) {
        added.chop(1);
        if (added.contains(u'\n'))
            lines.append(added.split(u'\n'));
        else
            lines.append(std::move(added));
    }
    pending_.clear();
    lines_->append(lines);
    if (following)
        scrollToBottom();
}

QString SensorLogView::text() const
{
    QStringList lines;
    for (int row = 0; row < lines_->rowCount(); ++row)
        lines.append(lines_->line(row));
    return lines.join(u'\n');
}

int SensorLogView::lineCount() const
{
    return lines_->rowCount();
}

} // namespace sensor::view
