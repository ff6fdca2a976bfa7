#include "graphs/view/graph_image_file.h"

#include "plot/renderer.h"

#include <QDir>
#include <QFileInfo>
#include <QImageWriter>
#include <QMutexLocker>
#include <QSaveFile>

namespace graphs::view {

GraphImageFile::GraphImageFile(QString fileName, QSize size) : fileName_(std::move(fileName)), size_(size) {}

void GraphImageFile::publish(plot::Graph scene)
{
    const QMutexLocker lock(&mutex_);
    scene_ = std::move(scene);
}

QString GraphImageFile::lastError() const
{
    const QMutexLocker lock(&mutex_);
    return error_;
}

bool GraphImageFile::saveGraphAsImageAtPath(const QString& folderPath)
{
    const QString path = QFileInfo(QDir(folderPath).filePath(fileName_)).absoluteFilePath();
    plot::Graph scene;
    {
        const QMutexLocker lock(&mutex_);
        if (QFileInfo::exists(path) && !written_.contains(path)) {
            error_ = QStringLiteral("%1 already exists and was not written by Skyvane; it is left as it is.").arg(path);
            return false;
        }
        scene = scene_;
    }
    const QImage image = plot::renderImage(scene, size_);
    QSaveFile file(path);
    QString error;
    if (image.isNull())
        error = QStringLiteral("The picture of %1 could not be made.").arg(fileName_);
    else if (!file.open(QIODevice::WriteOnly))
        error = file.errorString();
    else {
        QImageWriter writer(&file, "png");
        if (!writer.write(image))
            error = writer.errorString();
        else if (!file.commit())
            error = file.errorString();
    }
    const QMutexLocker lock(&mutex_);
    if (!error.isEmpty()) {
        error_ = QStringLiteral("Could not write %1: %2").arg(path, error);
        return false;
    }
    error_.clear();
    written_.insert(path);
    return true;
}

} // namespace graphs::view
