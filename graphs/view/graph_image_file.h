#pragma once

#include "plot/graph.h"
#include "scanning/graph_image_provider.h"

#include <QMutex>
#include <QSet>
#include <QSize>
#include <QString>

// One graph's picture for reports: the GUI thread publishes the newest picture of the graph,
// and a report (on whatever thread writes it) saves it as a PNG file of fixed name. The file
// is written whole or not at all, and a file of that name that this program did not write is
// left alone.
namespace graphs::view {

class GraphImageFile : public scanning::GraphImageProvider {
public:
    explicit GraphImageFile(QString fileName, QSize size = QSize(1100, 500));

    void publish(plot::Graph scene);
    bool saveGraphAsImageAtPath(const QString& folderPath) override;
    QString fileName() const { return fileName_; }
    // Why the last save failed, in words; empty after a success.
    QString lastError() const;

private:
    const QString fileName_;
    const QSize size_;
    mutable QMutex mutex_;
    plot::Graph scene_;
    QSet<QString> written_;
    QString error_;
};

} // namespace graphs::view
