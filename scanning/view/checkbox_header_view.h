#pragma once

#include <QHeaderView>

// A horizontal header that draws a check box in every section whose header data carries a
// check state, as the plot column's "tick all" box. Clicks stay with the section, so the
// table's own header handling decides what a click on it does.
namespace scanning::view {

class CheckboxHeaderView : public QHeaderView {
    Q_OBJECT
public:
    explicit CheckboxHeaderView(QWidget* parent = nullptr);

protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    QSize sectionSizeFromContents(int logicalIndex) const override;
};

} // namespace scanning::view
