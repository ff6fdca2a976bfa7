#pragma once

#include <QColor>
#include <QHash>
#include <QIcon>
#include <QStyledItemDelegate>

#include <functional>

namespace scan {
class ScanedResultInfo;
}
namespace scanning {
class ResultsTableModel;
}

// How a results cell looks beyond its text: the connected network's row in bold, the images of
// the signal, security and join cells, and the network's colour behind its plot tick, the same
// colour its curves have in the graphs.
namespace scanning::view {

class ResultsCellDelegate : public QStyledItemDelegate {
public:
    // The colour the graphs draw a network in.
    using SwatchColour = std::function<QColor(const scan::ScanedResultInfo& record)>;

    ResultsCellDelegate(scanning::ResultsTableModel& results, QObject* parent);

    void setSwatchColour(SwatchColour swatch) { swatch_ = std::move(swatch); }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    QIcon icon(const QString& name) const;

    scanning::ResultsTableModel& results_;
    SwatchColour swatch_;
    mutable QHash<QString, QIcon> icons_;
};

} // namespace scanning::view
