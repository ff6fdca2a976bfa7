#pragma once

#include <QDateTime>
#include <QIODevice>
#include <QList>
#include <QString>

#include <optional>

// The track points of a GPX file, in file order: what sensor-send replays as a GPS walk.
namespace app::cli {

struct GpxPoint {
    double latitude = 0.0;
    double longitude = 0.0;
    double elevation = 0.0;  // metres; 0 when the point has none
    QDateTime time;          // invalid when the point has none
};

// nullopt with *error set to a readable sentence when the file cannot be read, is not GPX,
// holds a point with a missing or impossible value, or has no track point at all.
std::optional<QList<GpxPoint>> readGpxTrack(const QString& path, QString* error);
std::optional<QList<GpxPoint>> readGpxTrack(QIODevice& device, QString* error);

} // namespace app::cli
