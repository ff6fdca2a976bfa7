#include "scanning/view/checkbox_header_view.h"

#include <QPainter>
#include <QStyleOptionButton>

#include <algorithm>
#include <optional>

namespace scanning::view {

namespace {

std::optional<Qt::CheckState> checkState(const QAbstractItemModel* model, int section)
{
    if (model == nullptr)
        return std::nullopt;
    const QVariant state = model->headerData(section, Qt::Horizontal, Qt::CheckStateRole);
    if (!state.isValid())
        return std::nullopt;
    return static_cast<Qt::CheckState>(state.toInt());
}

} // namespace

CheckboxHeaderView::CheckboxHeaderView(QWidget* parent) : QHeaderView(Qt::Horizontal, parent)
{
    setObjectName(QStringLiteral("scanResultsHeader"));
    setAccessibleName(tr("Columns"));
}

void CheckboxHeaderView::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const
{
    painter->save();
    QHeaderView::paintSection(painter, rect, logicalIndex);
    painter->restore();
    const std::optional<Qt::CheckState> state = checkState(model(), logicalIndex);
    if (!state)
        return;
    QStyleOptionButton box;
    box.initFrom(this);
    const QSize indicator(style()->pixelMetric(QStyle::PM_IndicatorWidth, &box, this),
                          style()->pixelMetric(QStyle::PM_IndicatorHeight, &box, this));
    box.rect = QRect(QPoint(0, 0), indicator);
    box.rect.moveCenter(rect.center());
    box.state = QStyle::State_Enabled | (*state == Qt::Checked ? QStyle::State_On : QStyle::State_Off);
    style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, painter, this);
}

QSize CheckboxHeaderView::sectionSizeFromContents(int logicalIndex) const
{
    QSize size = QHeaderView::sectionSizeFromContents(logicalIndex);
    if (checkState(model(), logicalIndex))
        size.setWidth(std::max(size.width(), style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, this) + 12));
    return size;
}

} // namespace scanning::view
